#include "rqbase/storage/g_tblvar.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "rqbase/util/erreur.h"

namespace rqbase {
namespace {

constexpr size_t kMorceau = 32768;  // les blocs du flux s'écrivent par morceaux de cette taille
// Comptes, capacités et décalages sont des entiers 32 bits dans le format.
constexpr long kCapaciteMax = INT32_MAX;
// Mémoire prise d'avance par une table neuve : sa capacité initiale, jusqu'à ces
// limites ; au-delà, la mémoire suit le contenu.
constexpr size_t kAvanceIndex = size_t(1) << 16;  // entrées
constexpr size_t kAvanceChn = size_t(1) << 20;    // octets

// Le tri par fusions demande au cache l'élément que chaque côté lira tant
// d'entrées plus loin (mesuré : au-delà de 8, plus rien ne se gagne).
constexpr long kAvanceLecture = 8;
// Marque d'une entrée égale à sa précédente dans le tri par fusions.
constexpr uint64_t kEgalPrecedent = uint64_t(1) << 63;

[[noreturn]] void MemoireInsuffisante() { throw ERqBase("TTableTV : mémoire insuffisante"); }

// Agrandit `v` pour tenir `besoin` éléments : au moins le double de la taille
// actuelle (coût amorti constant), sans dépasser la capacité du format sauf si
// le besoin l'exige.
template <typename T>
void Reserve(std::vector<T>& v, size_t besoin, long capacite) {
  if (v.size() >= besoin) return;
  const size_t visee = std::max(besoin, std::min(std::max(v.size() * 2, besoin), size_t(capacite)));
  try {
    v.resize(visee);
  } catch (const std::bad_alloc&) {
    MemoireInsuffisante();
  } catch (const std::length_error&) {
    MemoireInsuffisante();
  }
}

// Les passes du tri Shell, des grands écarts vers 1, sur des valeurs quelconques ;
// `avantOuEgal(x, y)` dit si x, placé avant y, peut y rester. Rend false si
// l'abandon a été demandé entre deux écarts.
template <typename T, typename F>
bool PassesShell(T* v, long n, const std::vector<long>& ecarts, TProgression* progression, F avantOuEgal) {
  long passe = 0;
  for (auto ig = ecarts.rbegin(); ig != ecarts.rend(); ++ig) {
    const long ecart = *ig;
    for (long i = ecart; i < n; ++i) {
      const T valeur = v[i];
      long j = i;
      while (j >= ecart && !avantOuEgal(v[j - ecart], valeur)) {
        v[j] = v[j - ecart];
        j -= ecart;
      }
      v[j] = valeur;
    }
    if (progression) {
      progression->Position(++passe);
      if (progression->Abandon()) return false;
    }
  }
  return true;
}

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

// ---- TTableTV : construction et croissance ----------------------------------

TTableTV::TTableTV(long initial, long croissance, int tailleMoyenne)
    : Initial(std::clamp(initial, 1L, kCapaciteMax)),
      Croissance(std::clamp(croissance, 1L, kCapaciteMax)),
      TailleMoyenne(std::max(1, tailleMoyenne)) {
  CreateTable();
}

TTableTV::TTableTV(const TTableTV* autre) : TTableTV(autre ? *autre : TTableTV()) {}

void TTableTV::CapacitesInitiales() {
  CapIndex = std::max(CapIndex, Initial);
  CapChn = std::max(CapChn, std::min(kCapaciteMax, Initial * TailleMoyenne));
}

void TTableTV::CreateTable() {
  CapacitesInitiales();
  // Nouveaux vecteurs plutôt que assign : une table remise à zéro rend sa mémoire.
  std::vector<int32_t>(std::min(size_t(CapIndex), kAvanceIndex)).swap(Index);
  std::vector<char>(std::min(size_t(CapChn), kAvanceChn)).swap(Chn);
}

void TTableTV::Raz() {
  NbElt = 0;
  Utilise = 0;
  CapIndex = 0;
  CapChn = 0;
  CreateTable();
}

void TTableTV::AggrandiTableIndex() {
  if (NbElt >= kCapaciteMax) MemoireInsuffisante();
  if (CapIndex <= NbElt) CapIndex = std::min(kCapaciteMax, CapIndex + std::max(Croissance, CapIndex / 10));
  Reserve(Index, size_t(NbElt) + 1, CapIndex);
}

void TTableTV::AggrandiTableChn(const TEltBaseTV& elt) {
  const long besoin = Utilise + elt.GetTailleMax();
  // Un élément qui écrirait plus que sa taille maximale déborderait la zone : la
  // mémoire couvre les deux.
  const long ecrit = Utilise + std::max(elt.GetTailleMax(), elt.GetTaille());
  if (ecrit >= kCapaciteMax) MemoireInsuffisante();
  if (besoin >= CapChn) {
    // La taille moyenne suit les éléments réellement stockés.
    if (NbElt > 0) TailleMoyenne = int(std::max(1L, Utilise / NbElt));
    while (besoin >= CapChn)
      CapChn = std::min(kCapaciteMax, CapChn + std::max(Croissance, NbElt / 10) * TailleMoyenne);
  }
  Reserve(Chn, size_t(ecrit) + 1, CapChn);
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

void TTableTV::LitDecalage(int32_t decalage, TEltBaseTV& elt) const {
  elt.Decalage = decalage;
  elt.Lit(Chn.data() + decalage, Utilise - decalage);
}

bool TTableTV::Lit(long rang, TEltBaseTV& elt) const {
  if (rang < 0 || rang >= NbElt) return false;
  LitDecalage(Index[size_t(rang)], elt);
  return true;
}

const char* TTableTV::Octets(long rang, long* lisibles) const {
  if (rang < 0 || rang >= NbElt) return nullptr;
  const int32_t decalage = Index[size_t(rang)];
  if (lisibles) *lisibles = Utilise - decalage;
  return Chn.data() + decalage;
}

bool TTableTV::Ordonne(const std::vector<int32_t>& ordre) {
  if (ordre.size() != size_t(NbElt)) return false;
  std::vector<bool> vu(ordre.size(), false);
  for (int32_t r : ordre) {
    if (r < 0 || r >= NbElt || vu[size_t(r)]) return false;
    vu[size_t(r)] = true;
  }
  std::vector<int32_t> classe(ordre.size());
  for (size_t i = 0; i < ordre.size(); ++i) classe[i] = Index[size_t(ordre[i])];
  std::copy(classe.begin(), classe.end(), Index.begin());
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
  const long taille = elt.GetTaille();
  // Sur place : le reste de l'ancienne place devient un trou. Un ancien élément
  // abîmé peut se relire plus long que ses octets : on ne dépasse jamais la zone.
  if (taille <= travail.GetTaille() && Index[size_t(rang)] + taille <= Utilise) {
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
  std::vector<char> neuve(Chn.size(), '\0');
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

// Tri par fusions naturelles de [premier, premier + n) : chaque comparaison ne relit
// qu'un élément, l'autre restant dans son objet de travail. Chaque entrée y voyage
// avec son décalage : position relative dans les bits 32 à 62, décalage dans les 32
// bits bas, et le bit 63 (kEgalPrecedent) dit qu'elle est égale à celle qui la
// précède dans sa suite, ce que chaque comparaison faite en passant suffit à tenir.
// L'élément que chaque côté lira ensuite est demandé d'avance au cache : sur une
// grande table, l'attente de la mémoire compte.
std::vector<uint64_t> TTableTV::ClasseParFusion(long premier, long n, TEltBaseTV& a, TEltBaseTV& b) const {
  const auto LitEntree = [&](uint64_t e, TEltBaseTV& elt) { LitDecalage(int32_t(uint32_t(e)), elt); };
  const auto Annonce = [&](uint64_t e) { __builtin_prefetch(Chn.data() + int32_t(uint32_t(e))); };
  const auto Egal = [](uint64_t e, bool egal) { return (e & ~kEgalPrecedent) | (egal ? kEgalPrecedent : 0); };
  std::vector<uint64_t> ordre(static_cast<size_t>(n)), tampon(static_cast<size_t>(n));
  for (long i = 0; i < n; ++i) ordre[size_t(i)] = uint64_t(i) << 32 | uint32_t(Index[size_t(premier + i)]);

  // Les suites déjà en ordre sont gardées telles quelles : une table presque triée
  // se classe en un passage.
  std::vector<long> suites;  // début de chaque suite croissante, puis n
  suites.push_back(0);
  LitEntree(ordre[0], a);
  for (long i = 1; i < n; ++i) {
    TEltBaseTV& precedent = i % 2 ? a : b;
    TEltBaseTV& courant = i % 2 ? b : a;
    LitEntree(ordre[size_t(i)], courant);
    const int c = precedent.EltCmp(courant);
    if (c > 0) suites.push_back(i);
    if (c == 0) ordre[size_t(i)] |= kEgalPrecedent;
  }
  suites.push_back(n);

  while (suites.size() > 2) {
    std::vector<long> fusionnees;
    for (size_t s = 0; s + 1 < suites.size(); s += 2) {
      const long bas = suites[s];
      fusionnees.push_back(bas);
      if (s + 2 >= suites.size()) {  // suite seule : recopiée
        std::copy(ordre.begin() + bas, ordre.begin() + suites[s + 1], tampon.begin() + bas);
        continue;
      }
      const long milieu = suites[s + 1], haut = suites[s + 2];
      const uint64_t* o = ordre.data();
      uint64_t* t = tampon.data();
      long g = bas, d = milieu, k = bas;
      LitEntree(o[g], a);
      LitEntree(o[d], b);
      // À égalité, la suite de gauche passe d'abord : la fusion est stable. Une
      // entrée qui suit une entrée de l'autre côté lui est égale seulement si la
      // comparaison qui a fait sortir celle-ci, de gauche, a rendu 0.
      bool depuisGauche = true;
      int derniere = 1;
      for (;;) {
        if (g + kAvanceLecture < milieu) Annonce(o[g + kAvanceLecture]);
        if (d + kAvanceLecture < haut) Annonce(o[d + kAvanceLecture]);
        const int c = a.EltCmp(b);
        if (c <= 0) {
          t[k] = k == bas || !depuisGauche ? Egal(o[g], false) : o[g];
          ++k, ++g;
          depuisGauche = true;
          derniere = c;
          if (g == milieu) break;
          LitEntree(o[g], a);
        } else {
          t[k] = k == bas ? Egal(o[d], false) : depuisGauche ? Egal(o[d], derniere == 0) : o[d];
          ++k, ++d;
          depuisGauche = false;
          derniere = c;
          if (d == haut) break;
          LitEntree(o[d], b);
        }
      }
      if (g == milieu && d < haut) {
        t[k++] = Egal(o[d++], derniere == 0);  // la tête de droite, comparée en dernier
      } else if (d == haut && g < milieu) {
        t[k++] = Egal(o[g++], false);  // plus grande que la dernière sortie de droite
      }
      std::copy(o + g, o + milieu, t + k);
      k += milieu - g;
      std::copy(o + d, o + haut, t + k);
    }
    fusionnees.push_back(n);
    suites.swap(fusionnees);
    ordre.swap(tampon);
  }
  return ordre;
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

  // Les éléments sont d'abord classés une fois (chacun relu environ log2(n) fois,
  // au lieu de deux fois par comparaison), ce qui donne à chacun le rang de son
  // groupe d'égaux. Les passes du tri Shell se jouent ensuite sur ces rangs, chacun
  // collé à son décalage : elles comparent les rangs comme elles compareraient les
  // éléments, et font donc exactement les mêmes déplacements (même ordre final,
  // y compris entre éléments égaux, même état après un abandon).
  std::vector<uint64_t> paires;
  bool distincts = true;
  try {
    const std::vector<uint64_t> ordre = ClasseParFusion(premier, n, travail, travail2);
    paires.resize(size_t(n));
    uint32_t rang = 0;
    for (long k = 0; k < n; ++k) {
      const uint64_t e = ordre[size_t(k)];
      if (k > 0 && !(e & kEgalPrecedent)) ++rang;
      distincts = distincts && (k == 0 || !(e & kEgalPrecedent));
      paires[size_t((e & ~kEgalPrecedent) >> 32)] = uint64_t(rang) << 32 | uint32_t(e);
    }
  } catch (const std::bad_alloc&) {
    MemoireInsuffisante();
  }
  if (progression) {
    progression->Maximum(long(ecarts.size()));
    progression->Position(0);
  }
  if (distincts && !(progression && progression->Abandon())) {
    // Sans égaux, l'ordre trié est unique : c'est celui que les passes donneraient.
    for (long i = 0; i < n; ++i)
      Index[size_t(premier + long(paires[size_t(i)] >> 32))] = int32_t(uint32_t(paires[size_t(i)]));
    if (progression)
      for (size_t passe = 1; passe <= ecarts.size(); ++passe) progression->Position(long(passe));
    return;
  }
  PassesShell(paires.data(), n, ecarts, progression,
              [](uint64_t x, uint64_t y) { return (x >> 32) <= (y >> 32); });
  for (long i = 0; i < n; ++i) Index[size_t(premier + i)] = int32_t(uint32_t(paires[size_t(i)]));
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
  // Rien n'est alloué avant d'avoir confronté les comptes au flux lui-même : l'index
  // et la zone de texte doivent y être en entier. Les capacités, la taille initiale
  // et le pas de croissance ne sont que des nombres : ils n'engagent aucune mémoire.
  const int64_t contenu = int64_t(nb) * 4 + utilise + (version < 2 ? 0 : 4);
  const bool incoherent = !flux.Bon() || nb < 0 || utilise < 0 || capIndex < nb || capChn < utilise ||
                          initial < 1 || moyenne < 1 || contenu > flux.Restant();
  if (incoherent) {
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
  // Les capacités de CreateTable, mais la mémoire du seul contenu (au moins une
  // place, pour que les pointeurs de données ne soient jamais nuls).
  CapacitesInitiales();
  std::vector<int32_t>(size_t(std::max(nb, 1L))).swap(Index);
  std::vector<char>(size_t(std::max(utilise, 1L))).swap(Chn);
  flux.readBytes(Index.data(), size_t(nb) * 4);
  flux.readBytes(Chn.data(), size_t(utilise));
  Croissance = version < 2 ? 50 : flux.readLong();
  bool bon = flux.Bon() && Croissance >= 1;
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
