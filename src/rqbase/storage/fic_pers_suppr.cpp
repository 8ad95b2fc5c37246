// TFicPersSuppr : la liste dense des personnes supprimées.
#include "rqbase/storage/fic_pers_suppr.h"

#include "rqbase/util/erreur.h"

namespace rqbase {

void TFicPersSuppr::AjouteNo(long no) {
  TPersSuppr enreg(this, 0);
  enreg.NoPers = static_cast<int32_t>(no);
  enreg.Enregistrement(ReturnNewNum());
}

void TFicPersSuppr::SuppNo(long no) {
  TPersSuppr enreg(this, 0);
  for (long i = 1; i <= Nombre; ++i) {
    enreg.Lecture(i);
    if (enreg.NoPers != no) continue;
    // La liste reste dense : le dernier vient boucher le trou.
    TPersSuppr dernier(this, Nombre);
    enreg.NoPers = dernier.NoPers;
    enreg.Enregistrement(i);
    dernier.NoPers = 0;
    dernier.Enregistrement(-3);
    --Nombre;
    break;
  }
  EcritureEntete();
}

long TFicPersSuppr::GetNbPersSuppr() {
  long n = 0;
  TPersSuppr enreg(this, 0);
  for (long i = 1; i <= Nombre; ++i) {
    enreg.Lecture(i);
    if (enreg.NoPers != 0) ++n;
  }
  return n;
}

void TFicPersSuppr::SupprimeList(const std::set<long>& numeros) {
  for (long no : numeros) SuppNo(no);
}

TPersSuppr::TPersSuppr(TFicPersSuppr* fic, long no) : Fic(fic) {
  if (no > 0 || no == -2) Lecture(no);
}

void TPersSuppr::Lecture(long no) {
  if (no != -3) Numero = no;
  NoPers = 0;
  if (Numero == 0 || !Fic) return;
  if (!Fic->LitEnreg(Numero, &NoPers) && Fic->Gest()->EnErreur())
    Fic->Gest()->FixeGenreErreur(1);
}

void TPersSuppr::Enregistrement(long no, TFicPersSuppr* fic) {
  TFicPersSuppr* cible = fic ? fic : Fic;
  if (no != -3) Numero = no;
  if (!cible) return;
  cible->EcritEnreg(Numero, &NoPers, "FicPersSuppr : Erreur Enreg");
}

}  // namespace rqbase
