// TBufferisationArbChrono : table ordonnée, chasse du plus petit numéro.
#include "rqbase/person/buffer_arb_chrono.h"

namespace rqbase {

TCachePersonnes& TBufferisationArbChrono::De(TFicPersons& fic) {
  if (!fic.Cache()) fic.InstalleCache(std::make_unique<TBufferisationArbChrono>(&fic));
  return *fic.Cache();
}

TPerson* TBufferisationArbChrono::GetPerson(long no, bool complement) {
  if (no < 0 && no != -2) no = 0;
  auto it = Personnes.find(no);
  if (it != Personnes.end()) {
    // Place de LectureComplementaire quand le complément est demandé.
    return it->second.get();
  }
  auto* personne = new TPerson(Fic, no, complement, 0, false);
  AjoutePersonne(personne);
  return personne;
}

void TBufferisationArbChrono::AjoutePersonne(TPerson* personne) {
  std::unique_ptr<TPerson> possedee(personne);
  // Voulu : c'est le plus petit numéro qui part, pas le moins récemment lu.
  if (Personnes.size() >= Capacite) Personnes.erase(Personnes.begin());
  Personnes[personne->No()] = std::move(possedee);
}

TPerson* TBufferisationArbChrono::Update(const TPerson& personne, bool forcer) {
  if (!personne.MajBuffer && !forcer) return nullptr;
  auto it = Personnes.find(personne.No());
  if (it == Personnes.end()) return nullptr;
  it->second->CopyPerson(personne);
  return it->second.get();
}

void TBufferisationArbChrono::Delete(long no) { Personnes.erase(no); }

void TBufferisationArbChrono::RazBuffers() { Personnes.clear(); }

}  // namespace rqbase
