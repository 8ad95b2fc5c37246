// Harnais libFuzzer : un fichier de notes fait des octets donnés s'ouvre, se lit en entier
// et s'écrit sans planter ni boucler ; une note écrite se relit telle quelle.
//
// Tout se passe sur un disque en mémoire, dans un contexte nu qui ne tient que le fichier
// des notes. Le premier octet choisit les blocs lus comme en-têtes (et, par son bit 16, si
// une chaîne qui boucle est lue jusqu'à sa borne) ; les autres sont le fichier. Après les lectures, une note est écrite sous un titre pris du fichier, avec un
// texte pris des octets, et doit se relire à l'identique (quand l'en-tête n'a pas été coupé).
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "rqbase/notes/fic_notes.h"
#include "rqbase/notes/note.h"
#include "rqbase/platform/fichier_memoire.h"
#include "rqbase/storage/contexte_dossier.h"

namespace {

using namespace rqbase;

const std::string kDossier = "/memoire/F.rq2/";

class TDossierNotes : public TContexteDossier {
 public:
  TDossierNotes() : TContexteDossier(kDossier + "F.prs") {
    VersionAnnee = 2020;
    Notes = std::make_unique<TFicNotes>(this, false);
  }
  TFicNotes* Fic() const { return Notes.get(); }

 private:
  std::unique_ptr<TFicNotes> Notes;
};

// La chaîne qui part de `debut` repasse par un bloc déjà vu : sa lecture irait jusqu'à
// 30 000 blocs (15 Mo de texte), ce qui coûte à lui seul cent exécutions.
bool Boucle(TFicNotes* fic, long debut) {
  TNote curseur(fic, 0);
  TNote::TEnreg bloc;
  std::vector<bool> vu(static_cast<size_t>(fic->NbBlocs()) + 1);
  for (long no = debut; no >= 1 && no <= fic->NbBlocs(); no = bloc.Suivant) {
    if (vu[static_cast<size_t>(no)]) return true;
    vu[static_cast<size_t>(no)] = true;
    if (!curseur.LectureElementaire(no, bloc)) return false;
  }
  return false;
}

TDisqueMemoire& Disque() {
  static TDisqueMemoire disque;
  static TDisqueMemoire::TInstallation installation(disque);
  return disque;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  if (taille < 1) return 0;
  const unsigned choix = donnees[0];
  Disque().Vide();
  Disque().Pose(kDossier + "F.not", TDisqueMemoire::TOctets(donnees + 1, donnees + taille));

  TDossierNotes gest;
  TFicNotes* fic = gest.Fic();
  if (!fic || !fic->Fichier()) return 0;
  const long nb = fic->NbBlocs();
  if (nb > 0 && static_cast<uint64_t>(nb) * 512 > taille) std::abort();  // compte borné par la taille

  // Lectures : quatre blocs pris comme en-têtes (titres et positions) ; les chaînes, qui
  // coûtent jusqu'à 30 000 blocs quand elles bouclent, sont lues deux fois seulement : le
  // premier titre trouvé en texte brut, et un bloc pris comme début de chaîne.
  long entete = 0;
  for (long no = 1 + choix % 8; no <= nb && no <= 4 + static_cast<long>(choix % 8); ++no) {
    TNote note(fic, no);
    if (note.Liste.Count() % 2 != 0) std::abort();
    for (int i = 0; i < note.Liste.Count(); i += 2) (void)note.Existe(note.Liste[i]);
    if (entete == 0 && !note.Liste.Empty()) entete = no;
    gest.FixeErreur(false);
  }
  // Une chaîne qui boucle n'est lue en entier que quand le bit 16 du premier octet le dit.
  const bool boucles = (choix & 16) != 0;
  if (entete != 0) {
    const TNote note(fic, entete);
    if (boucles || !Boucle(fic, note.GetPositionTitre(note.Liste[0])))
      (void)fic->ChargeNote(entete, note.Liste[0], 150 + (choix & 3) % 3, true);
  }
  const long debut = nb > 0 ? 1 + static_cast<long>(choix) % nb : 0;
  if (nb > 0 && (boucles || !Boucle(fic, debut))) (void)TNote(fic, 0).LectureNoteRubrique(debut);
  gest.FixeErreur(false);

  // Écriture puis relecture d'une note.
  TNote note(fic, entete);
  const std::string titre = note.Liste.Empty() ? std::string("Générale") : note.Liste[0];
  std::string texte(reinterpret_cast<const char*>(donnees), taille);
  for (char& c : texte)
    if (c == 0) c = ' ';
  if (choix & 2) texte = "{\\rtf1" + texte;
  const std::string attendu = texte;
  note.ModifNote(titre, texte);
  if (!gest.EnErreur() && !titre.empty() && note.Liste.CommaText().size() <= 507) {
    TNote relue(fic, note.NoFiche);
    if (relue.LectureNote(titre) != attendu) std::abort();
  }
  gest.FixeErreur(false);
  if (choix & 4) note.SupprimeNote(titre);
  if (choix & 8) (void)note.AjoutNoteContenuVide("Autre");
  return 0;
}
