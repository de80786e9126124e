// make_drawing NUMBER OUT.dxf
//
// Writes the drawing of make_drawing.h with that many block references.
#include <iostream>
#include <stdexcept>

#include "base/files.h"
#include "base/number.h"
#include "base/text.h"
#include "bench/make_drawing.h"

int main(int count, char** arguments) {
    const auto references = count == 3 ? base::parseInteger(std::string_view(arguments[1])) : std::nullopt;
    if (!references || *references < 0) {
        std::cerr << "usage: make_drawing NUMBER OUT.dxf\n";
        return 2;
    }
    try {
        base::AtomicFile file(base::fromUtf8(arguments[2]));
        bench::makeDrawing(static_cast<std::size_t>(*references),
                           [&file](std::string_view piece) { file.write(piece); });
        file.commit();
    } catch (const std::exception& error) {
        std::cerr << "make_drawing: " << error.what() << '\n';
        return 1;
    }
}
