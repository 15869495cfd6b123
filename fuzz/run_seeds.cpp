// Tries every file of the folders named on the command line on a fuzz target: the main program of
// the targets in builds without libFuzzer, so that each run of the tests reads the seeds.
#include "fuzz_input.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

int main(int count, char** arguments) {
    int tried = 0;
    for (int i = 1; i < count; ++i) {
        for (const auto& seed : std::filesystem::directory_iterator(arguments[i])) {
            std::printf("%s\n", seed.path().c_str()); // the last line names the input of a crash
            std::fflush(stdout);
            std::ifstream file(seed.path(), std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(file), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
            ++tried;
        }
    }
    std::printf("%d inputs\n", tried);
    return tried == 0 ? 1 : 0;
}
