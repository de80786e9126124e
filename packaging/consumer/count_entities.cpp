// Prints how many entities the model space of a drawing has, and saves the drawing elsewhere.
#include <iostream>
#include <string>

#include "drawingdb/block.h"
#include "drawingdb/database.h"

int main(int, char** arguments) {
    const auto wide = [](const char* text) { return std::wstring(text, text + std::char_traits<char>::length(text)); };
    const OdDbDatabasePtr drawing = OdDbDatabase::readFile(wide(arguments[1]));
    int count = 0;
    for (const OdDbObjectId entity : drawing->modelSpaceId().openAs<OdDbBlockTableRecord>()->entities())
        count += !entity.isNull();
    std::cout << count << "\n";
    drawing->writeFile(wide(arguments[2]));
}
