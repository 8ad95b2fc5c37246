// TBufferisationArbChrono : index plat des numéros, tas du plus petit numéro pour la chasse,
// places des personnes chassées reprises par les suivantes.
#include "rqbase/person/buffer_arb_chrono.h"

#include <algorithm>
#include <functional>

namespace rqbase {

namespace {

// Une place reprise sert comme une personne neuve : ni rappels ni refus de
// rafraîchissement hérités de la personne chassée (Update les lui avait recopiés).
void Reinitialise(TPerson& p) {
  p.MajBuffer = true;
  p.OublieRappels();
}

}  // namespace

TBufferisationArbChrono::TBufferisationArbChrono(TFicPersons* fic, size_t capacite)
    : Fic(fic), Capacite(std::max<size_t>(1, capacite)) {
  size_t taille = 8;
  int bits = 3;
  while (taille < 2 * Capacite) {
    taille *= 2;
    ++bits;
  }
  Index.resize(taille);
  Bits = bits;
}

TCachePersonnes& TBufferisationArbChrono::De(TFicPersons& fic) {
  if (!fic.Cache()) fic.InstalleCache(std::make_unique<TBufferisationArbChrono>(&fic));
  return *fic.Cache();
}

size_t TBufferisationArbChrono::Ideale(long no) const {
  // Hachage de Fibonacci : des numéros qui se suivent tombent loin les uns des autres, et
  // les suites de cases occupées restent courtes (un retrait n'en parcourt qu'une).
  return size_t((uint64_t(no) * 0x9E3779B97F4A7C15ull) >> (64 - Bits));
}

int32_t TBufferisationArbChrono::Cherche(long no) const {
  const size_t masque = Index.size() - 1;
  for (size_t i = Ideale(no);; i = (i + 1) & masque) {
    const TCase& c = Index[i];
    if (c.Place == kAbsent) return kAbsent;
    if (c.No == no) return c.Place;
  }
}

void TBufferisationArbChrono::Insere(long no, int32_t place) {
  const size_t masque = Index.size() - 1;
  size_t i = Ideale(no);
  while (Index[i].Place != kAbsent) i = (i + 1) & masque;
  Index[i] = {no, place};
  ++Nombre;
}

int32_t TBufferisationArbChrono::Retire(long no) {
  const size_t masque = Index.size() - 1;
  size_t i = Ideale(no);
  while (Index[i].Place != kAbsent && Index[i].No != no) i = (i + 1) & masque;
  const int32_t place = Index[i].Place;
  if (place == kAbsent) return kAbsent;
  // Retrait sans pierre tombale : chaque case qui suit remonte dans le trou si sa case
  // idéale n'est pas entre le trou et elle.
  for (size_t j = (i + 1) & masque; Index[j].Place != kAbsent; j = (j + 1) & masque) {
    const size_t k = Ideale(Index[j].No);
    const bool resteOuElleEst = i <= j ? (i < k && k <= j) : (i < k || k <= j);
    if (resteOuElleEst) continue;
    Index[i] = Index[j];
    i = j;
  }
  Index[i].Place = kAbsent;
  --Nombre;
  return place;
}

int32_t TBufferisationArbChrono::ChassePlusPetit() {
  while (Tas.size() > DebutTas) {
    long no;
    if (TasTrie) {
      // Numéros venus en ordre croissant : le plus petit est en tête, sans tas à refaire.
      no = Tas[DebutTas++];
      if (DebutTas >= 4096 && 2 * DebutTas >= Tas.size()) {
        Tas.erase(Tas.begin(), Tas.begin() + static_cast<std::ptrdiff_t>(DebutTas));
        DebutTas = 0;
      }
    } else {
      std::pop_heap(Tas.begin(), Tas.end(), std::greater<long>());
      no = Tas.back();
      Tas.pop_back();
    }
    // Un numéro oublié entre-temps est passé. Tout numéro présent est dans le tas : le
    // premier présent qui en sort est donc le plus petit des présents.
    if (const int32_t place = Retire(no); place != kAbsent) return place;
  }
  Tas.clear();
  DebutTas = 0;
  return kAbsent;
}

int32_t TBufferisationArbChrono::PlaceLibre() {
  if (Libres.empty()) return kAbsent;
  const int32_t place = Libres.back();
  Libres.pop_back();
  return place;
}

void TBufferisationArbChrono::NoteNumero(long no) {
  if (Tas.size() - DebutTas >= 2 * Capacite + 16) {
    // Trop de numéros oubliés encombrent le tas : il est refait des seuls présents, `no`
    // compris (il vient d'entrer dans l'index), rangés : une suite croissante est un tas.
    Tas.clear();
    DebutTas = 0;
    for (const TCase& c : Index)
      if (c.Place != kAbsent) Tas.push_back(c.No);
    std::sort(Tas.begin(), Tas.end());
    TasTrie = true;
    return;
  }
  if (TasTrie) {
    if (Tas.size() == DebutTas || no >= Tas.back()) {
      Tas.push_back(no);
      return;
    }
    // L'ordre croissant se rompt : ce qui reste, rangé, est déjà un tas.
    Tas.erase(Tas.begin(), Tas.begin() + static_cast<std::ptrdiff_t>(DebutTas));
    DebutTas = 0;
    TasTrie = false;
  }
  Tas.push_back(no);
  std::push_heap(Tas.begin(), Tas.end(), std::greater<long>());
}

int32_t TBufferisationArbChrono::Trouve(long no) {
  if (const int32_t place = Cherche(no); place != kAbsent) return place;
  // Plein : le plus petit numéro part, et sa place reçoit la personne lue.
  int32_t place = Nombre >= Capacite ? ChassePlusPetit() : PlaceLibre();
  if (place == kAbsent) {
    Places.emplace_back();
    place = int32_t(Places.size() - 1);
  }
  TEntree& e = Places[size_t(place)];
  Libere(e);
  // Ce que lirait TPerson(Fic, no, false, 0, false), gardé brut : une fiche que rien ne
  // remplit (numéro 0, hors du fichier, illisible) se lit vide.
  e.Lisible = (no > 0 || no == -2) && LitBrut(no, e);
  Insere(no, place);
  NoteNumero(no);
  return place;
}

bool TBufferisationArbChrono::LitBrut(long no, TEntree& e) {
  const bool suite = no > 0 && no == Precedent + 1;
  Precedent = no;
  if (!suite) return TPerson::LitBrut(Fic, no, e.Brut, e.Ext);
  const bool dansLeBloc = no >= BlocDebut && no < BlocDebut + BlocNombre && BlocEcritures == Fic->NbEcritures();
  if (!dansLeBloc) {
    // Jamais au-delà du compte : ce qui suit n'est pas une fiche, et LitBrut le refuserait.
    BlocNombre = std::min(kBloc, Fic->NbPersEffective() - no + 1);
    if (BlocNombre <= 0) {
      BlocNombre = 0;
      return TPerson::LitBrut(Fic, no, e.Brut, e.Ext);
    }
    Bloc.resize(size_t(kBloc));
    BlocDebut = no;
    const int64_t octets = Fic->LitEnregs(no, BlocNombre, Bloc.data());
    BlocEcritures = Fic->NbEcritures();
    // Un bloc venu court (fin du fichier, erreur du disque plus loin) ne juge pas la fiche
    // demandée : elle est lue seule, comme sans lecture anticipée, et le bloc n'est pas gardé.
    if (octets < int64_t(BlocNombre) * int64_t(sizeof(TPerson::TEnreg))) {
      BlocNombre = 0;
      return TPerson::LitBrut(Fic, no, e.Brut, e.Ext);
    }
  }
  return TPerson::LitBrutDeja(Fic, no, Bloc[size_t(no - BlocDebut)], e.Brut, e.Ext);
}

void TBufferisationArbChrono::Libere(TEntree& e) {
  e.Ext.reset();
  e.Lisible = false;
  e.Foireux = false;
  if (e.Complet) Reserve.push_back(std::move(e.Complet));
}

TPerson& TBufferisationArbChrono::Complet(TEntree& e, long no) {
  if (e.Complet) return *e.Complet;
  if (!Reserve.empty() && Reserve.back()->Fic() == Fic) {
    e.Complet = std::move(Reserve.back());
    Reserve.pop_back();
    Reinitialise(*e.Complet);
  } else {
    e.Complet = std::make_unique<TPerson>(Fic);
  }
  if (e.Lisible)
    e.Foireux = !e.Complet->AppliqueBrut(no, e.Brut, e.Ext.get());
  else
    e.Complet->FicheIllisible(no);
  return *e.Complet;
}

TPerson* TBufferisationArbChrono::GetPerson(long no, bool complement) {
  if (no < 0 && no != -2) no = 0;
  TEntree& e = Places[size_t(Trouve(no))];
  TPerson& p = Complet(e, no);
  // Comme une lecture du disque avec complément : pas de listes pour une fiche foireuse.
  if (complement && !p.Evens() && !e.Foireux) p.LectureComplementaire();
  return &p;
}

void TBufferisationArbChrono::LitPersonne(long no, bool complement, TPerson& cible) {
  if (no < 0 && no != -2) no = 0;
  TEntree& e = Places[size_t(Trouve(no))];
  if (e.Complet || complement) {
    cible.CopyPerson(*GetPerson(no, complement));
    return;
  }
  // La forme publique se fait dans l'objet de l'appelant : rien d'autre n'est écrit.
  if (e.Lisible)
    cible.AppliqueBrut(no, e.Brut, e.Ext.get());
  else
    cible.FicheIllisible(no);
  cible.OublieRappels();
}

void TBufferisationArbChrono::AjoutePersonne(TPerson* personne) {
  std::unique_ptr<TPerson> possedee(personne);
  // Voulu : c'est le plus petit numéro qui part, pas le moins récemment lu.
  if (Nombre >= Capacite)
    if (const int32_t place = ChassePlusPetit(); place != kAbsent) {
      Libere(Places[size_t(place)]);
      Libres.push_back(place);
    }
  const long no = personne->No();
  int32_t place = Cherche(no);
  if (place == kAbsent) {
    place = PlaceLibre();
    if (place == kAbsent) {
      Places.emplace_back();
      place = int32_t(Places.size() - 1);
    }
    Insere(no, place);
    NoteNumero(no);
  }
  TEntree& e = Places[size_t(place)];
  Libere(e);
  e.Complet = std::move(possedee);
}

TPerson* TBufferisationArbChrono::Update(const TPerson& personne, bool forcer) {
  if (!personne.MajBuffer && !forcer) return nullptr;
  const int32_t place = Cherche(personne.No());
  if (place == kAbsent) return nullptr;
  TEntree& e = Places[size_t(place)];
  TPerson& p = Complet(e, personne.No());
  p.CopyPerson(personne);
  return &p;
}

void TBufferisationArbChrono::Delete(long no) {
  if (const int32_t place = Retire(no); place != kAbsent) {
    Libere(Places[size_t(place)]);
    Libres.push_back(place);
  }
}

void TBufferisationArbChrono::RazBuffers() {
  std::fill(Index.begin(), Index.end(), TCase());
  Nombre = 0;
  Places.clear();
  Libres.clear();
  Reserve.clear();
  Tas.clear();
  DebutTas = 0;
  TasTrie = true;
  BlocNombre = 0;
  Precedent = 0;
}

}  // namespace rqbase
