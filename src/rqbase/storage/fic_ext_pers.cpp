// TExtPerson : lecture et écriture d'un enregistrement de débordement.
#include "rqbase/storage/fic_ext_pers.h"

#include <cstring>

#include "rqbase/util/erreur.h"

namespace rqbase {

void TExtPerson::TEnreg::Raz() { *this = TEnreg{}; }

bool TExtPerson::TEnreg::Vide() const {
  return Conjoints[0].No == 0 && Enfants[0].No == 0 && LiensChpsSimple[0] == 0 && LiensEvenement[0] == 0 &&
         LiensCitation[0] == 0;
}

TExtPerson::TExtPerson(TFicExtPersons* fic, long no) : Fic(fic) {
  if (no > 0 || no == -2)
    Lecture(no);
  else
    Enreg.Raz();
}

void TExtPerson::Lecture(long no) {
  if (no != -3) Numero = no;
  if (Numero == 0 || !Fic) {
    Enreg.Raz();
    return;
  }
  Fic->LitEnreg(Numero, &Enreg);
}

void TExtPerson::Enregistrement(long no, TFicExtPersons* fic) {
  TFicExtPersons* cible = fic ? fic : Fic;
  if (no != -3) Numero = no;
  if (!cible) return;
  cible->EcritEnreg(Numero, &Enreg, "FicExtPers : Erreur Enreg");
}

}  // namespace rqbase
