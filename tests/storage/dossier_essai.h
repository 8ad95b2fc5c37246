// Outils des tests du dossier : un dossier temporaire créé et détruit par le test,
// et l'instantané d'un dossier système (contenu de chaque fichier) pour vérifier que
// rien n'a changé sur le disque.
#pragma once
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

namespace rqbase::essai {

class TDossierTemp {
 public:
  TDossierTemp() {
    std::string modele = (std::filesystem::temp_directory_path() / "rqdossierXXXXXX").string();
    Racine = ::mkdtemp(modele.data());
  }
  ~TDossierTemp() {
    std::error_code ec;
    std::filesystem::permissions(Racine, std::filesystem::perms::owner_all, std::filesystem::perm_options::add, ec);
    for (auto& e : std::filesystem::recursive_directory_iterator(Racine, ec))
      std::filesystem::permissions(e.path(), std::filesystem::perms::owner_all, std::filesystem::perm_options::add, ec);
    std::filesystem::remove_all(Racine, ec);
  }
  // Chemin du .prs d'un dossier `nom`.rq2 sous la racine.
  std::string Prs(const std::string& nom = "Essai") const { return Racine + "/" + nom + ".rq2/" + nom + ".prs"; }
  std::string Dossier(const std::string& nom = "Essai") const { return Racine + "/" + nom + ".rq2"; }
  std::string Racine;
};

inline std::string Contenu(const std::string& chemin) {
  std::ifstream f(chemin, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>());
}

inline void Ecrit(const std::string& chemin, const std::string& octets) {
  std::ofstream f(chemin, std::ios::binary | std::ios::trunc);
  f.write(octets.data(), static_cast<std::streamsize>(octets.size()));
}

using TInstantane = std::map<std::string, std::string>;

inline TInstantane Instantane(const std::string& dossier) {
  TInstantane r;
  for (auto& e : std::filesystem::recursive_directory_iterator(dossier))
    r[e.path().string()] = e.is_regular_file() ? Contenu(e.path().string()) : std::string("<dossier>");
  return r;
}

}  // namespace rqbase::essai
