// Outils des tests des notes : un dossier réduit à son fichier de notes, sur un disque en
// mémoire, avec les octets du fichier à portée de main.
#pragma once
#include <cstring>
#include <memory>
#include <string>

#include "rqbase/notes/fic_notes.h"
#include "rqbase/notes/note.h"
#include "rqbase/platform/fichier_memoire.h"
#include "rqbase/storage/contexte_dossier.h"

namespace rqbase::essai {

inline const std::string kNot = "/memoire/N.rq2/N.not";

class TDossierNotes : public TContexteDossier {
 public:
  explicit TDossierNotes(bool creation, bool lectureSeule = false)
      : TContexteDossier("/memoire/N.rq2/N.prs", lectureSeule) {
    VersionAnnee = 2020;
    Notes = std::make_unique<TFicNotes>(this, creation);
  }
  TFicNotes* Fic() const { return Notes.get(); }
  // Ferme puis rouvre le fichier, comme une nouvelle ouverture du dossier.
  void Rouvre() {
    Notes.reset();
    Notes = std::make_unique<TFicNotes>(this, false);
  }

 private:
  std::unique_ptr<TFicNotes> Notes;
};

// Un bloc tel qu'il est sur le disque.
inline TNote::TEnreg Bloc(const TDisqueMemoire& disque, long no) {
  TNote::TEnreg e{};
  const auto octets = disque.Contenu(kNot);
  const size_t debut = static_cast<size_t>(no) * 512;
  if (octets.size() >= debut + 512) std::memcpy(&e, octets.data() + debut, 512);
  return e;
}

inline TNote::TEnreg Fait(const std::string& texte, int32_t suivant) {
  TNote::TEnreg e{};
  std::memcpy(e.Texte, texte.data(), std::min<size_t>(texte.size(), 508));
  e.Suivant = suivant;
  return e;
}

// Un fichier de notes fait à la main : bloc 0 (compte `nbBlocs`) puis les blocs donnés.
inline std::string FichierNotes(int32_t nbBlocs, std::initializer_list<TNote::TEnreg> blocs) {
  std::string octets(512, '\0');
  std::memcpy(octets.data() + 508, &nbBlocs, 4);
  for (const auto& b : blocs) octets.append(reinterpret_cast<const char*>(&b), 512);
  return octets;
}

}  // namespace rqbase::essai
