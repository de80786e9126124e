// dxflib_read FILE.dxf
//
// Reads a drawing with dxflib and keeps nothing of it: the adapter's functions are all empty.
#include <dxflib/dl_creationadapter.h>
#include <dxflib/dl_dxf.h>
#include <iostream>

int main(int count, char** arguments) {
    DL_CreationAdapter nothing;
    if (count != 2 || !DL_Dxf().in(arguments[1], &nothing)) {
        std::cerr << "usage: dxflib_read FILE.dxf (one that can be read)\n";
        return 2;
    }
}
