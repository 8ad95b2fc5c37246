// Un dossier temporaire pour les mesures, créé au premier usage et effacé à la sortie.
#pragma once
#include <stdlib.h>

#include <filesystem>
#include <string>

namespace rqbase::mesure {

struct TRacine {
  TRacine() {
    std::string modele = (std::filesystem::temp_directory_path() / "rqbenchXXXXXX").string();
    Chemin = ::mkdtemp(modele.data());
  }
  ~TRacine() {
    std::error_code ec;
    std::filesystem::remove_all(Chemin, ec);
  }
  std::string Chemin;
};

inline TRacine& Racine() {
  static TRacine r;
  return r;
}

}  // namespace rqbase::mesure
