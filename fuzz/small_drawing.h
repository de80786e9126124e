// A drawing for scripts: a line, and a layout with a viewport.
#pragma once

#include <string>
#include <string_view>

#include "drawingdb/database.h"

namespace fuzz {

inline OdDbDatabasePtr smallDrawing() {
    static const std::string bytes = [] {
        std::string empty = OdDbDatabase::createNew()->writeBytes();
        const std::string_view entities =
            "  0\r\nLINE\r\n  5\r\nF1\r\n330\r\n1F\r\n100\r\nAcDbEntity\r\n  8\r\n0\r\n100\r\nAcDbLine\r\n "
            "10\r\n0.0\r\n"
            " 20\r\n0.0\r\n 11\r\n5.0\r\n 21\r\n5.0\r\n"
            "  0\r\nVIEWPORT\r\n  5\r\nF2\r\n330\r\n1B\r\n100\r\nAcDbEntity\r\n 67\r\n1\r\n  8\r\n0\r\n"
            "100\r\nAcDbViewport\r\n 10\r\n50.0\r\n 20\r\n50.0\r\n 40\r\n100.0\r\n 41\r\n80.0\r\n 68\r\n2\r\n "
            "69\r\n2\r\n"
            " 12\r\n5.0\r\n 22\r\n5.0\r\n 45\r\n40.0\r\n";
        const std::string_view place = "  2\r\nENTITIES\r\n";
        empty.insert(empty.find(place) + place.size(), entities);
        return empty;
    }();
    return OdDbDatabase::readBytes(bytes, L"script.dxf");
}

}  // namespace fuzz
