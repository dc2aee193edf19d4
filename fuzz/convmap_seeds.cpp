// Writes the kept corpus of the target convmap_file anew: convmap_seeds FOLDER
#include <cstdio>
#include <fstream>
#include <string>

#include "tests/support/convmap_builder.hpp"

namespace {

using nls::test::Bytes;
using nls::test::ConvmapBuilder;

std::string folder;

void write(const char* name, const Bytes& file) {
    std::ofstream{folder + "/" + name, std::ios::binary}.write(reinterpret_cast<const char*>(file.data()),
                                                               static_cast<std::streamsize>(file.size()));
}

ConvmapBuilder everyCode() {
    ConvmapBuilder builder;
    for (unsigned code = 0; code < 256; ++code)
        builder.bare("A" + std::to_string(code), "B", static_cast<unsigned char>(code));
    return builder;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", arguments[0]);
        return 2;
    }
    folder = arguments[1];
    const Bytes small = nls::test::smallWorld().build();
    write("small_world", small);
    write("cut_short", Bytes(small.begin(), small.begin() + static_cast<std::ptrdiff_t>(small.size() / 2)));
    write("no_entries", ConvmapBuilder{}.build());
    write("every_code", everyCode().build());
    write("byte_map", ConvmapBuilder{}.byteMap("A", "B", nls::test::identityBytes()).build());
    write("single_byte",
          ConvmapBuilder{}.units("A", "UTF-8", 19, nls::test::upperHalfAt(0x2400)).bare("UTF-8", "A", 20).build());
    write("leads_to_itself", ConvmapBuilder{}
                                 .bare("A", "B", 20)
                                 .bare("B", "A", 20)
                                 .bare("A", "UTF-8", 29)
                                 .bare("UTF-8", "A", 30)
                                 .bare("A", "UTF-16", 29)
                                 .bare("UTF-16", "UTF-8", 23)
                                 .build());
    return 0;
}
