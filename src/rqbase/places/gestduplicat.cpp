// TEltDupChn, TFicheDupli, TFicDupli : valeurs partagées, leur fichier et leur table triée.
#include "rqbase/places/gestduplicat.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "rqbase/fields/rendu_texte.h"
#include "rqbase/places/texte_lieu.h"
#include "rqbase/util/erreur.h"
#include "rqbase/util/majuscules.h"

namespace rqbase {

namespace {

constexpr const char* kErreurEnreg = "FicDupli : Erreur Enreg";

// Copie au plus `max` caractères de `source` (nul : vide) dans `dest` de taille > max.
void CopieCoupee(char* dest, const char* source, size_t max) {
  const size_t n = source ? strnlen(source, max) : 0;
  std::memcpy(dest, source ? source : "", n);
  dest[n] = 0;
}

// Découpe au premier ';' : avant, et après (vide sans ';').
void Coupe(const char* texte, std::string& avant, std::string& apres) {
  const char* pv = std::strchr(texte, ';');
  if (!pv) {
    avant = texte;
    apres.clear();
    return;
  }
  avant.assign(texte, pv);
  apres = pv + 1;
}

// L'enregistrement du fichier dans l'élément : chaque texte coupé à sa taille de fichier.
void DecodeEnreg(TEnregDupli e, long numero, TEltDupChn& elt) {
  e.Ville[50] = e.Code[10] = e.Pays[50] = 0;
  std::memcpy(elt.Ville, e.Ville, sizeof e.Ville);
  std::memcpy(elt.Code, e.Code, sizeof e.Code);
  std::memcpy(elt.Pays, e.Pays, sizeof e.Pays);
  elt.Etat = e.Etat;
  elt.NoFiche = static_cast<int32_t>(numero);
  elt.CalcMaj();
}

// Ce que l'index et le classement lisent d'un élément : son numéro et son état, sans ses
// textes (les lire tous coûterait cent mille copies de plus à l'ouverture d'un fichier).
class TNumeroEtat : public TEltBaseTV {
 public:
  char* Ecrit(char* p) const override { return p; }
  void Lit(const char* p, long taille) override {
    const char* fin = p + std::max<long>(taille, 0);
    LitMemoire(&NoFiche, sizeof NoFiche, p, fin);
    Etat = LitCar(p, fin);
  }
  int GetTaille() const override { return 5; }
  int GetTailleMax() const override { return 5; }
  int EltCmp(const TEltBaseTV&) const override { return 0; }
  int32_t NoFiche = 0;
  char Etat = 'N';
};

int CompareOctets(const char* a, const char* b) {
  const int d = std::strcmp(a, b);
  return d < 0 ? -1 : d > 0 ? 1 : 0;
}

// Une entrée de la table vue sur ses octets : les six textes de la forme compacte en place,
// et les 16 premiers octets de la commune en capitales (avant son ';'), rangés pour qu'une
// comparaison d'entiers donne l'ordre des octets.
struct TVueElt {
  const char* Champs[6];
  uint64_t Cle[2];
  bool CleValide;  // commune non vide : la clé décide dès qu'elle diffère
  int32_t Rang;
};

void FixeCle(TVueElt& v) {
  const char* maj = v.Champs[3];
  const size_t l = std::strcspn(maj, ";");
  unsigned char octets[16] = {};
  std::memcpy(octets, maj, std::min<size_t>(l, 16));
  for (int k = 0; k < 2; ++k) {
    uint64_t c = 0;
    for (int i = 0; i < 8; ++i) c = c << 8 | octets[k * 8 + i];
    v.Cle[k] = c;
  }
  v.CleValide = l > 0;
}

// L'ordre d'EltCmp. Deux communes (en capitales, avant leur ';') qui diffèrent dans leurs
// 16 premiers octets sont rangées par eux, comme MultiChnCmp le ferait : la plupart des
// comparaisons ne vont pas relire les textes, épars dans la table.
int CompareVues(const TVueElt& a, const TVueElt& b) {
  if (a.CleValide && b.CleValide) {
    if (a.Cle[0] != b.Cle[0]) return a.Cle[0] < b.Cle[0] ? -1 : 1;
    if (a.Cle[1] != b.Cle[1]) return a.Cle[1] < b.Cle[1] ? -1 : 1;
  }
  return TEltDupChn::CompareChamps(a.Champs, b.Champs);
}

// Le classement de l'ouverture, fait sur les octets de la table : le tri par fusion de
// Classement relit chaque élément (six textes copiés) à chaque comparaison, soit plus de la
// moitié du temps d'ouverture. Sans égaux l'ordre trié est unique, donc celui que Classement
// donnerait ; avec des égaux (deux enregistrements identiques), l'ordre entre eux est celui
// des passes de Classement : false, et c'est à lui de classer.
bool ClasseSansEgaux(TTableTV& table) {
  const long n = table.GetNbElt();
  std::vector<TVueElt> vues(static_cast<size_t>(n));
  for (long r = 0; r < n; ++r) {
    long lisibles = 0;
    const char* p = table.Octets(r, &lisibles);
    const char* fin = p + lisibles;
    p += 5;  // NoFiche et Etat
    TVueElt& v = vues[static_cast<size_t>(r)];
    v.Rang = static_cast<int32_t>(r);
    for (const char*& champ : v.Champs) {
      const auto* zero = p < fin ? static_cast<const char*>(std::memchr(p, 0, static_cast<size_t>(fin - p))) : nullptr;
      if (!zero) return false;
      champ = p;
      p = zero + 1;
    }
    FixeCle(v);
  }
  std::sort(vues.begin(), vues.end(), [](const TVueElt& a, const TVueElt& b) { return CompareVues(a, b) < 0; });
  std::vector<int32_t> ordre(static_cast<size_t>(n));
  for (size_t i = 0; i < vues.size(); ++i) {
    if (i > 0 && CompareVues(vues[i - 1], vues[i]) == 0) return false;
    ordre[i] = vues[i].Rang;
  }
  return table.Ordonne(ordre);
}

}  // namespace

// --- TEltDupChn ---

TEltDupChn::TEltDupChn(long numero, const char* ville, const char* code, const char* region, const char* pays) {
  NoFiche = static_cast<int32_t>(numero);
  Etat = 'N';
  CopieCoupee(Code, code, 10);
  CopieCoupee(Pays, pays, 50);
  SetVilleRegion(ville, region);
  CalcMaj();
}

void TEltDupChn::SetVilleRegion(const char* ville, const char* region) {
  const bool sansRegion = !region || !*region;
  if (ville && sansRegion) {
    CopieCoupee(Ville, ville, 300);
    return;
  }
  if (ville && std::strlen(ville) > 50) {
    // Voulu : une commune trop longue pour le fichier perd sa région.
    CopieCoupee(Ville, ville, 50);
    return;
  }
  CopieCoupee(Ville, ville, 300);
  if (sansRegion) return;
  size_t lv = std::strlen(Ville);
  if (lv + 1 < 50) Ville[lv++] = ';', Ville[lv] = 0;
  const size_t lr = std::strlen(region);
  if (lv + lr <= 50) {
    std::strcat(Ville, region);
    return;
  }
  // La région remplit Ville jusqu'à 50 caractères ; la suite va derrière le pays.
  const size_t place = 50 - std::min<size_t>(lv, 50);
  std::strncat(Ville, region, place);
  const std::string reste(region + place, std::min<size_t>(lr - place, 49));
  size_t lp = std::strlen(Pays);
  if (lp + 1 < 50) Pays[lp++] = ';', Pays[lp] = 0;
  const long room = 50 - static_cast<long>(lp);
  if (room > 0) std::strncat(Pays, reste.c_str(), static_cast<size_t>(room));
}

void TEltDupChn::GetVilleRegionPays(std::string& ville, std::string& region, std::string& pays) const {
  std::string debordement;
  Coupe(Ville, ville, region);
  Coupe(Pays, pays, debordement);
  region += debordement;
}

void TEltDupChn::Fixe(std::string& ville, std::string* code, std::string* region, std::string* pays,
                      bool majuscule) const {
  std::string v, r, p;
  GetVilleRegionPays(v, r, p);
  auto forme = [&](const std::string& s) { return majuscule && !s.empty() ? UpperANSIChaineAS(s, 2) : s; };
  ville = forme(v);
  if (code) *code = forme(Code);
  if (region) *region = forme(r);
  if (pays) *pays = forme(p);
}

void TEltDupChn::CalcMaj() {
  UpperANSIChaine0(VilleMaj, Ville, 2);
  UpperANSIChaine0(CodeMaj, Code, 2);
  UpperANSIChaine0(PaysMaj, Pays, 2);
}

std::string TEltDupChn::ChargeElement(TChampBase::TStyle style, TChampBase::TStyle presentation,
                                      TChampBase::TCasse casse) const {
  std::string commune, region, pays;
  GetVilleRegionPays(commune, region, pays);
  std::string texte;
  if (static_cast<int>(style) == 135)
    texte = ConstuitChnLieuPointVirgule(commune, Code, region, pays);
  else if (static_cast<int>(style) == 148)
    texte = commune + '\x01' + Code + '\x01' + region + '\x01' + pays;
  return AjusteCasseTexte(AjusteStyleTexte(texte, presentation), casse);
}

std::string TEltDupChn::ChargeElement(TChampBase::TSousChamps sousChamp, TChampBase::TStyle presentation,
                                      TChampBase::TCasse casse) const {
  std::string commune, region, pays;
  GetVilleRegionPays(commune, region, pays);
  const int sc = static_cast<int>(sousChamp);
  const std::string texte = sc == 54 ? std::string(Code) : sc == 55 ? pays : sc == 64 ? region : commune;
  return AjusteCasseTexte(AjusteStyleTexte(texte, presentation), casse);
}

std::string TEltDupChn::Charge() const {
  return ChargeElement(TChampBase::TStyle{135}, TChampBase::TStyle{60}, 2);
}

void TEltDupChn::Raz() {
  NoFiche = 0;
  Etat = 'N';
  Ville[0] = Code[0] = Pays[0] = VilleMaj[0] = CodeMaj[0] = PaysMaj[0] = 0;
}

int TEltDupChn::GetTaille() const {
  return static_cast<int>(std::strlen(Ville) + std::strlen(Code) + std::strlen(Pays) + std::strlen(VilleMaj) +
                          std::strlen(CodeMaj) + std::strlen(PaysMaj)) +
         11;
}

char* TEltDupChn::Ecrit(char* p) const {
  EcritMemoire(&NoFiche, sizeof NoFiche, p);
  EcritCar(Etat, p);
  for (const char* s : {Ville, Code, Pays, VilleMaj, CodeMaj, PaysMaj}) EcritChn(s, p);
  return p;
}

void TEltDupChn::Lit(const char* p, long taille) {
  const char* fin = p + std::max<long>(taille, 0);
  LitMemoire(&NoFiche, sizeof NoFiche, p, fin);
  Etat = LitCar(p, fin);
  const struct {
    char* Champ;
    size_t Taille;
  } champs[] = {{Ville, sizeof Ville},       {Code, sizeof Code},       {Pays, sizeof Pays},
                {VilleMaj, sizeof VilleMaj}, {CodeMaj, sizeof CodeMaj}, {PaysMaj, sizeof PaysMaj}};
  for (const auto& c : champs) {
    // Sans passer par une chaîne : le tri et l'ouverture relisent des millions d'éléments.
    const auto* zero = static_cast<const char*>(std::memchr(p, 0, static_cast<size_t>(fin - p)));
    const char* finTexte = zero ? zero : fin;
    const size_t n = std::min(static_cast<size_t>(finTexte - p), c.Taille - 1);
    std::memcpy(c.Champ, p, n);
    c.Champ[n] = 0;
    p = finTexte;
    if (p < fin) ++p;  // le zéro final
  }
}

int TEltDupChn::MultiChnCmp(const char* a, const char* b) {
  // La comparaison d'octets entière n'est faite que si elle décide : c'est la fonction
  // la plus appelée du classement d'un fichier de lieux.
  const char* pa = std::strchr(a, ';');
  const char* pb = std::strchr(b, ';');
  if (!pa && !pb) return CompareOctets(a, b);
  const size_t la = pa ? size_t(pa - a) : std::strlen(a);
  const size_t lb = pb ? size_t(pb - b) : std::strlen(b);
  if (la == 0 || lb == 0) return CompareOctets(a, b);
  const int premier = std::string_view(a, la).compare(std::string_view(b, lb));
  if (premier != 0) return premier < 0 ? -1 : 1;
  return CompareOctets(a, b);
}

int TEltDupChn::CompareChamps(const char* const a[6], const char* const b[6]) {
  // Les capitales d'abord ; les champs simples ne départagent que les accents et la casse.
  if (int d = MultiChnCmp(a[3], b[3])) return d;
  if (int d = CompareOctets(a[4], b[4])) return d;
  if (int d = CompareOctets(a[5], b[5])) return d;
  if (int d = MultiChnCmp(a[0], b[0])) return d;
  if (int d = CompareOctets(a[1], b[1])) return d;
  return CompareOctets(a[2], b[2]);
}

int TEltDupChn::EltCmp(const TEltBaseTV& autre) const {
  const auto& o = static_cast<const TEltDupChn&>(autre);
  const char* const a[6] = {Ville, Code, Pays, VilleMaj, CodeMaj, PaysMaj};
  const char* const b[6] = {o.Ville, o.Code, o.Pays, o.VilleMaj, o.CodeMaj, o.PaysMaj};
  return CompareChamps(a, b);
}

// --- TFicheDupli ---

TFicheDupli::TFicheDupli(TFicDupli* fic, long numero, bool memoire) : Fic(fic) {
  if (numero < 1 && numero != -2) return;
  if (memoire)
    LectureMemoire(numero);
  else
    Lecture(numero);
}

void TFicheDupli::Lecture(long numero) {
  if (numero != -3) Numero = numero;
  Elt.Raz();
  if (Numero == 0 || !Fic) return;
  TEnregDupli e{};
  if (!Fic->LitEnreg(Numero, &e) && Fic->Gest() && Fic->Gest()->EnErreur()) Fic->Gest()->FixeGenreErreur(1);
  // L'élément se décode du tampon quoi qu'il arrive : après un échec, il sort vide.
  DecodeEnreg(e, Numero, Elt);
}

void TFicheDupli::LectureMemoire(long numero) {
  if (numero != -3) Numero = numero;
  Elt.Raz();
  const auto& index = Fic ? Fic->TabIndex() : std::vector<int32_t>{};
  if (!Fic || !Fic->Table() || Numero < 0 || static_cast<size_t>(Numero) >= index.size()) {
    Numero = 0;
    return;
  }
  Fic->Table()->Lit(index[static_cast<size_t>(Numero)], Elt);
}

void TFicheDupli::Enregistrement(long numero, TFicDupli* autre) {
  TFicDupli* cible = autre ? autre : Fic;
  if (numero != -3) Numero = numero;
  if (!cible) return;
  if (Numero > cible->NbFiches()) throw ERqBase(kErreurEnreg);
  TEnregDupli e{};
  CopieCoupee(e.Ville, Elt.Ville, 50);
  CopieCoupee(e.Code, Elt.Code, 10);
  CopieCoupee(e.Pays, Elt.Pays, 50);
  e.Etat = Elt.Etat;
  if (Numero != 0) cible->EcritDupli(Numero, e);
  const auto& index = cible->TabIndex();
  if (cible->Table() && Numero > 0 && static_cast<size_t>(Numero) < index.size()) {
    Elt.CalcMaj();
    TEltDupChn travail;
    cible->Table()->Change(index[static_cast<size_t>(Numero)], Elt, travail);
  }
}

// --- TFicDupli ---

TFicDupli::TFicDupli(TContexteDossier* gest, TTypeFichier type, bool creation)
    : TFicEnregBase(gest, type, sizeof(TEnregDupli), creation) {
  // Place des données de référence des lieux (TFicPays) pour le type 5 : elles viennent avec
  // la base des pays et des communes.
  Demarre(creation);
  CreationTable();
  if (!gest) return;
  // Tout le fichier d'une lecture (un lieu par enregistrement, cent mille et plus) : même
  // résultat que Lecture de chaque numéro dans l'ordre du fichier, sans un appel système chacun.
  std::vector<TEnregDupli> enregs(static_cast<size_t>(Nombre));
  const int64_t octets = static_cast<int64_t>(enregs.size() * sizeof(TEnregDupli));
  const int64_t lus = Handle && octets > 0 && !gest->EnErreur()
                          ? Handle->LitA(sizeof(TEnregDupli), enregs.data(), static_cast<size_t>(octets))
                          : 0;
  TEltDupChn elt;
  for (long no = 1; no <= Nombre; ++no) {
    const TEnregDupli& e = enregs[static_cast<size_t>(no - 1)];
    if (lus >= no * static_cast<int64_t>(sizeof(TEnregDupli)))
      DecodeEnreg(e, no, elt);
    else {
      TFicheDupli fiche(this, no, false);  // la fin manque : la lecture ordinaire en décide
      elt = fiche.Elt;
    }
    TableElts->Ajoute(elt);
  }
  if (!ClasseSansEgaux(*TableElts)) {
    TEltDupChn a, b;
    TableElts->Classement(a, b);
  }
  CalculIndex(0);
}

TFicDupli::~TFicDupli() = default;

void TFicDupli::CreationTable() {
  TableElts = std::make_unique<TTableTV>(Nombre + 10, 500, 80);
}

void TFicDupli::EcritureEntete() {
  TEnregDupli e{};
  std::snprintf(e.Ville, sizeof e.Ville, "%ld", Nombre);
  e.Etat = 'N';
  EcritEnteteBrut(&e);
}

void TFicDupli::LectureEntete() {
  Nombre = 0;
  TEnregDupli e{};
  LitEnreg(-2, &e);
  e.Ville[50] = 0;
  if (Gestion && !Gestion->EnErreur()) Nombre = std::atol(e.Ville);
  // Un fichier coupé court rétrécit sans bruit à ce qu'il tient.
  const int64_t taille = Handle ? Handle->Taille() : 0;
  int64_t n = taille / static_cast<int64_t>(sizeof(TEnregDupli));
  if (n != 0) --n;
  if (n < Nombre) Nombre = static_cast<long>(n);
  if (Nombre < 0) Nombre = 0;
  NombreSurDisque = Nombre;
}

bool TFicDupli::EcritDupli(long numero, const TEnregDupli& enreg) {
  return EcritEnreg(numero, &enreg, kErreurEnreg);
}

long TFicDupli::Cherche(TEltDupChn* element, bool creation, int* position) {
  TEltDupChn travail;
  long pos = TableElts->RechercheDicoth(*element, travail, false, -1);
  long resultat = 0;
  if (pos < 0 && !creation) {
    pos = -1;
  } else if (pos < 0) {
    // Le compte monte en mémoire ; l'en-tête qui le porte s'écrit après l'enregistrement.
    element->NoFiche = static_cast<int32_t>(ReturnNewNum());
    element->Etat = 'N';
    pos = TableElts->AjouteClasse(*element, travail);
    if (Handle) {
      TFicheDupli fiche(this, 0, false);
      fiche.Elt = *element;
      fiche.Enregistrement(element->NoFiche);
      CalculIndex(static_cast<int>(pos));
      pos = ApprochePosClassementSansSuppr(pos, &travail);
    }
    resultat = element->NoFiche;
  } else {
    TableElts->Lit(pos, travail);
    if (travail.IsFicheSupprimee() && Handle) {
      // Retapée, une valeur supprimée revient sous son ancien numéro.
      TFicheDupli fiche(this, travail.NoFiche, true);
      fiche.Elt.Etat = 'N';
      fiche.Enregistrement(travail.NoFiche);
      CalculClassementSansSuppr(static_cast<int>(pos));
    }
    resultat = travail.NoFiche;
    if (Handle) pos = ApprochePosClassementSansSuppr(pos, &travail);
  }
  if (position) *position = static_cast<int>(pos);
  return resultat;
}

void TFicDupli::CalculIndex(int depuis) {
  if (Index.size() <= static_cast<size_t>(Nombre)) Index.resize(static_cast<size_t>(Nombre) + 1, 0);
  TNumeroEtat elt;
  for (long p = depuis; p < TableElts->GetNbElt() && p < Nombre; ++p) {
    TableElts->Lit(p, elt);
    if (elt.NoFiche > Nombre || elt.NoFiche < 0) {
      char texte[80];
      std::snprintf(texte, sizeof texte, "Err index FicDupli %ld %ld", static_cast<long>(elt.NoFiche), Nombre);
      throw ERqBase(texte);
    }
    Index[static_cast<size_t>(elt.NoFiche)] = static_cast<int32_t>(p);
  }
  CalculClassementSansSuppr(depuis);
}

void TFicDupli::CalculClassementSansSuppr(int depuis) {
  if (depuis != 0) {
    auto it = std::find(SansSuppr.begin(), SansSuppr.end(), depuis);
    if (it != SansSuppr.end()) {
      SansSuppr.erase(it, SansSuppr.end());
    } else {
      depuis = 0;
      SansSuppr.clear();
    }
  } else {
    SansSuppr.clear();
  }
  TNumeroEtat elt;
  for (long p = depuis; p < TableElts->GetNbElt(); ++p) {
    TableElts->Lit(p, elt);
    if (elt.Etat != 'O') SansSuppr.push_back(static_cast<int32_t>(p));
  }
}

long TFicDupli::ApprochePosClassementSansSuppr(long position, TEltDupChn* element) {
  if (position == -1) return -1;
  // Parcours linéaire, voulu : le vecteur n'est jamais cherché par dichotomie.
  for (size_t rang = 0; rang < SansSuppr.size(); ++rang) {
    if (SansSuppr[rang] >= position) {
      if (element) TableElts->Lit(SansSuppr[rang], *element);
      return static_cast<long>(rang);
    }
  }
  return -1;
}

void TFicDupli::SupprimeElt(long rang) {
  TEltDupChn travail;
  if (!Handle) {
    if (rang >= 0 && rang < TableElts->GetNbElt()) TableElts->Supprime(rang, travail);
    return;
  }
  if (rang < 0 || static_cast<size_t>(rang) >= SansSuppr.size()) return;
  const long position = SansSuppr[static_cast<size_t>(rang)];
  TableElts->Lit(position, travail);
  TFicheDupli fiche(this, travail.NoFiche, true);
  fiche.Elt.Etat = 'O';
  fiche.Enregistrement(travail.NoFiche);
  CalculClassementSansSuppr(static_cast<int>(position));
}

long TFicDupli::RangDeNumero(long numero) const {
  if (numero < 1 || static_cast<size_t>(numero) >= Index.size()) return -1;
  const int32_t position = Index[static_cast<size_t>(numero)];
  auto it = std::lower_bound(SansSuppr.begin(), SansSuppr.end(), position);
  return it != SansSuppr.end() && *it == position ? static_cast<long>(it - SansSuppr.begin()) : -1;
}

std::string TFicDupli::Charge(long numero) {
  if (numero == 0) return "";
  return TFicheDupli(this, numero, true).Elt.Charge();
}

std::string TFicDupli::RetDepartement(long numero) {
  if (numero == 0) return "";
  return TFicheDupli(this, numero, true).Elt.ChargeElement(TChampBase::TSousChamps{54}, TChampBase::TStyle{62}, 2);
}

std::string TFicDupli::RetCommune(long numero) {
  if (numero == 0) return "";
  return TFicheDupli(this, numero, true).Elt.ChargeElement(TChampBase::TSousChamps{53}, TChampBase::TStyle{60}, 2);
}

}  // namespace rqbase
