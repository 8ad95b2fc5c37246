#include "rqbase/storage/g_tblvar.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "rqbase/util/erreur.h"

namespace rqbase {
namespace {

constexpr size_t kMorceau = 32768;  // les blocs du flux s'écrivent par morceaux de cette taille
// Un index ou une zone de texte relus ne dépassent jamais ce que la croissance
// normale donne pour leur contenu ; au-delà, le flux est jugé absurde.
constexpr long kMargeCapacite = 1L << 20;
constexpr long kMargeCroissance = 1L << 26;

}  // namespace

// ---- TEltBaseTV -------------------------------------------------------------

void TEltBaseTV::EcritMemoire(const void* source, size_t n, char*& p) {
  std::memcpy(p, source, n);
  p += n;
}

void TEltBaseTV::EcritChn(const std::string& texte, char*& p) {
  std::memcpy(p, texte.c_str(), texte.size() + 1);
  p += texte.size() + 1;
}

char TEltBaseTV::LitCar(const char*& p, const char* fin) { return p < fin ? *p++ : '\0'; }

void TEltBaseTV::LitMemoire(void* destination, size_t n, const char*& p, const char* fin) {
  const size_t dispo = p < fin ? size_t(fin - p) : 0;
  const size_t lu = std::min(n, dispo);
  std::memcpy(destination, p, lu);
  std::memset(static_cast<char*>(destination) + lu, 0, n - lu);
  p += lu;
}

std::string TEltBaseTV::LitChn(const char*& p, const char* fin) {
  const char* debut = p;
  while (p < fin && *p) ++p;
  std::string s(debut, p);
  if (p < fin) ++p;  // le zéro final
  return s;
}

// ---- TTableTV : construction et croissance ----------------------------------

TTableTV::TTableTV(long initial, long croissance, int tailleMoyenne)
    : Initial(std::max(1L, initial)), Croissance(std::max(1L, croissance)), TailleMoyenne(std::max(1, tailleMoyenne)) {
  CreateTable();
}

TTableTV::TTableTV(const TTableTV* autre) : TTableTV(autre ? *autre : TTableTV()) {}

void TTableTV::CreateTable() {
  CapIndex = std::max(CapIndex, Initial);
  CapChn = std::max(CapChn, Initial * TailleMoyenne);
  Index.assign(size_t(CapIndex), 0);
  Chn.assign(size_t(CapChn), '\0');
}

void TTableTV::Raz() {
  NbElt = 0;
  Utilise = 0;
  CapIndex = 0;
  CapChn = 0;
  CreateTable();
}

void TTableTV::AggrandiTableIndex() {
  if (CapIndex > NbElt) return;
  CapIndex += std::max(Croissance, CapIndex / 10);
  try {
    Index.resize(size_t(CapIndex));
  } catch (const std::bad_alloc&) {
    throw ERqBase("TTableTV : mémoire insuffisante");
  }
}

void TTableTV::AggrandiTableChn(const TEltBaseTV& elt) {
  const long besoin = Utilise + elt.GetTailleMax();
  if (besoin < CapChn) return;
  // La taille moyenne suit les éléments réellement stockés.
  if (NbElt > 0) TailleMoyenne = int(std::max(1L, Utilise / NbElt));
  while (besoin >= CapChn) CapChn += std::max(Croissance, NbElt / 10) * TailleMoyenne;
  try {
    Chn.resize(size_t(CapChn));
  } catch (const std::bad_alloc&) {
    throw ERqBase("TTableTV : mémoire insuffisante");
  }
}

long TTableTV::Ecrit(const TEltBaseTV& elt) {
  AggrandiTableChn(elt);
  const long decalage = Utilise;
  char* fin = elt.Ecrit(Chn.data() + decalage);
  Utilise = long(fin - Chn.data());
  return decalage;
}

// ---- Ajout, lecture, modification -------------------------------------------

long TTableTV::Ajoute(const TEltBaseTV& elt) {
  AggrandiTableIndex();
  const long decalage = Ecrit(elt);
  Index[size_t(NbElt)] = int32_t(decalage);
  return NbElt++;
}

bool TTableTV::Lit(long rang, TEltBaseTV& elt) const {
  if (rang < 0 || rang >= NbElt) return false;
  const long decalage = Index[size_t(rang)];
  elt.Decalage = decalage;
  elt.Lit(Chn.data() + decalage, Utilise - decalage);
  return true;
}

void TTableTV::DeplaceIndex(long de, long vers) {
  if (de == vers) return;
  const int32_t valeur = Index[size_t(de)];
  if (de > vers)
    std::memmove(&Index[size_t(vers) + 1], &Index[size_t(vers)], size_t(de - vers) * sizeof(int32_t));
  else
    std::memmove(&Index[size_t(de)], &Index[size_t(de) + 1], size_t(vers - de) * sizeof(int32_t));
  Index[size_t(vers)] = valeur;
}

long TTableTV::AjouteClasse(const TEltBaseTV& elt, TEltBaseTV& travail, const TRappel& rappel) {
  const long nouveau = Ajoute(elt);
  long pos = 0;
  if (nouveau > 0) RechercheDichotomiqueApprochee(nouveau - 1, pos, nullptr, travail, elt, travail, nullptr);
  // La recherche plafonne sa réponse au dernier rang cherché ; un élément plus
  // grand que tous reste donc à sa place, en fin de table.
  if (nouveau > 0 && pos == nouveau - 1) {
    Lit(pos, travail);
    if (travail.EltCmp(elt) < 0) pos = nouveau;
  }
  DeplaceIndex(nouveau, pos);
  if (rappel) rappel(nouveau, pos);
  return pos;
}

void TTableTV::Insere(long rang, const TEltBaseTV& elt, TEltBaseTV& travail, const TRappel& rappel) {
  (void)travail;
  const long nouveau = Ajoute(elt);
  rang = std::clamp(rang, 0L, nouveau);
  DeplaceIndex(nouveau, rang);
  if (rappel) rappel(nouveau, rang);
}

void TTableTV::Change(long rang, const TEltBaseTV& elt, TEltBaseTV& travail) {
  if (rang < 0 || rang >= NbElt) return;
  Lit(rang, travail);
  if (elt.GetTaille() <= travail.GetTaille()) {
    // Sur place : le reste de l'ancienne place devient un trou.
    elt.Ecrit(Chn.data() + Index[size_t(rang)]);
    return;
  }
  Index[size_t(rang)] = int32_t(Ecrit(elt));
}

long TTableTV::ChangeClasse(long rang, const TEltBaseTV& elt, TEltBaseTV& travail, const TRappel& rappel) {
  if (rang < 0 || rang >= NbElt) return -1;
  Change(rang, elt, travail);
  // On sort l'entrée de l'index, on cherche sa place parmi les autres, on l'y remet.
  DeplaceIndex(rang, NbElt - 1);
  long pos = 0;
  if (NbElt > 1) {
    RechercheDichotomiqueApprochee(NbElt - 2, pos, nullptr, travail, elt, travail, nullptr);
    if (pos == NbElt - 2) {
      Lit(pos, travail);
      if (travail.EltCmp(elt) < 0) pos = NbElt - 1;
    }
  }
  DeplaceIndex(NbElt - 1, pos);
  if (rappel) rappel(rang, pos);
  return pos;
}

void TTableTV::Supprime(long rang, TEltBaseTV& travail) {
  (void)travail;
  if (rang < 0 || rang >= NbElt) return;
  DeplaceIndex(rang, NbElt - 1);
  --NbElt;
}

void TTableTV::Echange(long a, long b) {
  if (a < 0 || b < 0 || a >= NbElt || b >= NbElt) return;
  std::swap(Index[size_t(a)], Index[size_t(b)]);
}

void TTableTV::ChangePtr(long rang, const TEltBaseTV& elt) {
  if (rang < 0 || rang >= NbElt || elt.Decalage < 0 || elt.Decalage > Utilise) return;
  Index[size_t(rang)] = int32_t(elt.Decalage);
}

void TTableTV::ReorganiseTableChn() {
  std::vector<char> neuve(size_t(CapChn), '\0');
  long utilise = 0;
  // Chaque entrée garde ses octets jusqu'au décalage suivant dans la zone.
  std::vector<int32_t> tries(Index.begin(), Index.begin() + NbElt);
  std::sort(tries.begin(), tries.end());
  tries.erase(std::unique(tries.begin(), tries.end()), tries.end());
  std::vector<std::pair<int32_t, int32_t>> deplacement;  // ancien -> nouveau
  for (size_t i = 0; i < tries.size(); ++i) {
    const long debut = tries[i];
    long fin = i + 1 < tries.size() ? tries[i + 1] : Utilise;
    std::memcpy(neuve.data() + utilise, Chn.data() + debut, size_t(fin - debut));
    deplacement.emplace_back(int32_t(debut), int32_t(utilise));
    utilise += fin - debut;
  }
  for (long r = 0; r < NbElt; ++r) {
    auto it = std::lower_bound(deplacement.begin(), deplacement.end(), std::make_pair(Index[size_t(r)], INT32_MIN));
    Index[size_t(r)] = it->second;
  }
  Chn.swap(neuve);
  Utilise = utilise;
}

// ---- Recherche et tri ---------------------------------------------------------

void TTableTV::RechercheDichotomiqueApprochee(long dernier, long& pos, bool* memePremier, TEltBaseTV& travail,
                                              const TEltBaseTV& elt, TEltBaseTV& travail2, bool* trouve) const {
  (void)travail2;
  if (memePremier) *memePremier = false;
  if (trouve) *trouve = false;
  pos = 0;
  if (NbElt == 0) return;
  if (dernier < 0 || dernier >= NbElt) dernier = NbElt - 1;

  long bas = 0, haut = dernier;
  bool egal = false;
  while (haut - bas >= 2) {
    const long milieu = (bas + haut) / 2;
    Lit(milieu, travail);
    const int c = travail.EltCmp(elt);
    if (c == 0) {
      pos = milieu;
      egal = true;
      break;
    }
    if (c < 0)
      bas = milieu;
    else
      haut = milieu;
  }
  if (!egal) {
    Lit(bas, travail);
    if (travail.EltCmp(elt) < 0) {
      Lit(haut, travail);
      pos = elt.EltCmp(travail) <= 0 ? haut : std::min(haut + 1, dernier);
    } else {
      pos = bas;
    }
  }
  Lit(pos, travail);
  if (memePremier) *memePremier = elt.EgalPremier(travail);
  if (trouve) *trouve = elt.EgalApproche(travail);
}

long TTableTV::RechercheDicoth(const TEltBaseTV& elt, TEltBaseTV& travail, bool approche, long dernier) const {
  if (NbElt == 0) return approche ? 0 : -1;
  long pos = 0;
  RechercheDichotomiqueApprochee(dernier, pos, nullptr, travail, elt, travail, nullptr);
  if (approche) return pos;
  Lit(pos, travail);
  return travail.EltCmp(elt) == 0 ? pos : -1;
}

void TTableTV::TriShell(long premier, long dernier, TEltBaseTV& travail, TEltBaseTV& travail2,
                        TProgression* progression) {
  premier = std::max(0L, premier);
  dernier = std::min(dernier, NbElt - 1);
  const long n = dernier - premier + 1;
  if (n < 2) return;
  // Écarts de Ciura prolongés par 2,25 : le tri ne déplace que les décalages de l'index.
  std::vector<long> ecarts = {1, 4, 10, 23, 57, 132, 301, 701, 1750};
  while (ecarts.back() * 9 / 4 < n) ecarts.push_back(ecarts.back() * 9 / 4);
  while (ecarts.size() > 1 && ecarts.back() >= n) ecarts.pop_back();
  if (progression) {
    progression->Maximum(long(ecarts.size()));
    progression->Position(0);
  }
  long passe = 0;
  for (auto ig = ecarts.rbegin(); ig != ecarts.rend(); ++ig) {
    const long ecart = *ig;
    for (long i = premier + ecart; i <= dernier; ++i) {
      const int32_t valeur = Index[size_t(i)];
      Lit(i, travail2);
      long j = i;
      while (j - ecart >= premier) {
        Lit(j - ecart, travail);
        if (travail.EltCmp(travail2) <= 0) break;
        Index[size_t(j)] = Index[size_t(j - ecart)];
        j -= ecart;
      }
      Index[size_t(j)] = valeur;
    }
    if (progression) {
      progression->Position(++passe);
      if (progression->Abandon()) return;
    }
  }
}

void TTableTV::Classement(TEltBaseTV& travail, TEltBaseTV& travail2, TProgression* progression) {
  TriShell(0, NbElt - 1, travail, travail2, progression);
}

// ---- Flux ---------------------------------------------------------------------

void TTableTV::Sauvegarde(opstream& flux) const {
  flux.writeLong(int32_t(NbElt));
  flux.writeLong(int32_t(CapIndex));
  flux.writeLong(int32_t(Initial));
  flux.writeLong(int32_t(Utilise));
  flux.writeLong(int32_t(CapChn));
  flux.writeLong(int32_t(TailleMoyenne));
  const auto* index = reinterpret_cast<const char*>(Index.data());
  for (size_t fait = 0, total = size_t(NbElt) * 4; fait < total; fait += kMorceau)
    flux.writeBytes(index + fait, std::min(kMorceau, total - fait));
  for (size_t fait = 0, total = size_t(Utilise); fait < total; fait += kMorceau)
    flux.writeBytes(Chn.data() + fait, std::min(kMorceau, total - fait));
  flux.writeLong(int32_t(Croissance));
}

bool TTableTV::Restauration(ipstream& flux, int version) {
  const long nb = flux.readLong();
  const long capIndex = flux.readLong();
  const long initial = flux.readLong();
  const long utilise = flux.readLong();
  const long capChn = flux.readLong();
  const long moyenne = flux.readLong();
  // Rien n'est alloué avant d'avoir vérifié les comptes contre le flux lui-même.
  const bool absurde = !flux.Bon() || nb < 0 || utilise < 0 || capIndex < nb || capChn < utilise || initial < 1 ||
                       moyenne < 1 || moyenne > (1 << 20) || nb * 4 + utilise > flux.Restant() ||
                       capIndex > 2 * nb + kMargeCapacite || capChn > 2 * utilise + kMargeCapacite ||
                       initial > kMargeCapacite || initial * moyenne > kMargeCroissance;
  if (absurde) {
    flux.MetEnEchec();
    *this = TTableTV();
    return false;
  }
  Initial = initial;
  TailleMoyenne = int(moyenne);
  CapIndex = capIndex;
  CapChn = capChn;
  NbElt = 0;
  Utilise = 0;
  CreateTable();
  flux.readBytes(Index.data(), size_t(nb) * 4);
  flux.readBytes(Chn.data(), size_t(utilise));
  Croissance = version < 2 ? 50 : flux.readLong();
  // Un pas démesuré ferait exploser le prochain agrandissement de la zone de texte.
  bool bon = flux.Bon() && Croissance >= 1 && Croissance * TailleMoyenne <= kMargeCroissance;
  for (long i = 0; bon && i < nb; ++i) bon = Index[size_t(i)] >= 0 && Index[size_t(i)] <= utilise;
  if (!bon) {
    flux.MetEnEchec();
    *this = TTableTV();
    return false;
  }
  NbElt = nb;
  Utilise = utilise;
  return true;
}

void writeRef(opstream& flux, const TTableTV& table) { table.Sauvegarde(flux); }

void writePtr(opstream& flux, const TTableTV* table) {
  flux.writeByte(table ? 1 : 0);
  if (table) table->Sauvegarde(flux);
}

bool readRef(ipstream& flux, TTableTV& table, int version) { return table.Restauration(flux, version); }

TTableTV* readPtr(ipstream& flux, int version) {
  if (flux.readByte() == 0 || !flux.Bon()) return nullptr;
  auto table = std::make_unique<TTableTV>();
  if (!table->Restauration(flux, version)) return nullptr;
  return table.release();
}

}  // namespace rqbase
