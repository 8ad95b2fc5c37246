// Rejoue un corpus sauvegardé dans un harnais libFuzzer, sans libFuzzer : la suite
// de tests passe ainsi chaque harnais sur ses entrées connues, sous les sanitizers.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "rqbase/platform/cp1252.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille);

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "utilisation : %s DOSSIER_DU_CORPUS\n", argv[0]);
    return 2;
  }
  std::error_code ec;
  int n = 0;
  for (const auto& entree : std::filesystem::directory_iterator(argv[1], ec)) {
    if (!entree.is_regular_file()) continue;
    std::ifstream f(entree.path(), std::ios::binary);
    std::vector<uint8_t> octets((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(octets.data(), octets.size());
    ++n;
  }
  std::printf("%s\n", rqbase::VersUtf8(std::to_string(n) + " entrées rejouées").c_str());
  return 0;
}
