// Ligne de l'index des noms : forme sérialisée et ordre de la table triée.
#include "rqbase/index/ligne_index.h"

#include <algorithm>
#include <cstring>

namespace rqbase {

namespace {

// Le décimal d'un entier, écrit à `p` ; rend la nouvelle fin. Le tri d'une grande table
// compare des millions de lignes : pas de snprintf ici.
char* Decimal(int64_t v, char* p) {
  char tampon[24];
  int n = 0;
  const bool negatif = v < 0;
  uint64_t u = negatif ? uint64_t(0) - uint64_t(v) : uint64_t(v);
  do {
    tampon[n++] = char('0' + u % 10);
    u /= 10;
  } while (u != 0);
  if (negatif) *p++ = '-';
  while (n > 0) *p++ = tampon[--n];
  return p;
}

// Le texte de l'ordre : Nom 1 Prenom 1 AnneeMin 1 AnneeMax Sexe NoPers. Sa longueur est
// gardée à part : un Sexe nul est un octet comme un autre, il ne termine rien.
size_t CleOrdre(const TEnregIndex& e, char* p) {
  char* debut = p;
  for (const char* s = e.Nom; *s && s < e.Nom + sizeof e.Nom; ++s) *p++ = *s;
  *p++ = 1;
  for (const char* s = e.Prenom; *s && s < e.Prenom + sizeof e.Prenom; ++s) *p++ = *s;
  *p++ = 1;
  p = Decimal(e.AnneeMin, p);
  *p++ = 1;
  p = Decimal(e.AnneeMax, p);
  *p++ = e.Sexe == ' ' ? char(0) : e.Sexe;  // un sexe blanc est gardé comme 0
  p = Decimal(e.NoPers, p);
  return size_t(p - debut);
}

size_t Longueur(const char* s, size_t taille) {
  const void* z = std::memchr(s, 0, taille);
  return z ? size_t(static_cast<const char*>(z) - s) : taille;
}

void EcritCompte(const char* s, size_t taille, char*& p) {
  const size_t n = Longueur(s, taille - 1);
  *p++ = char(uint8_t(n));
  std::memcpy(p, s, n);
  p += n;
}

// Un texte compté, coupé à la place du tableau ; ce qui dépasse est passé sans être gardé.
void LitCompte(char* dest, size_t taille, const char*& p, const char* fin) {
  const size_t n = uint8_t(TEltBaseTV::LitCar(p, fin));
  const size_t dispo = p < fin ? size_t(fin - p) : 0;
  const size_t lu = std::min(n, dispo);
  const size_t garde = std::min(lu, taille - 1);
  std::memcpy(dest, p, garde);
  dest[garde] = 0;
  // Un nul au milieu d'un texte abîmé le termine là, comme partout ailleurs.
  p += lu;
}

}  // namespace

void TEnregIndex::Pose(char* dest, size_t taille, const std::string& texte) {
  const size_t n = std::min(texte.size(), taille - 1);
  std::memcpy(dest, texte.data(), n);
  std::memset(dest + n, 0, taille - n);
}

bool TEnregIndex::MemesColonnes(const TEnregIndex& a) const {
  return std::strncmp(Nom, a.Nom, sizeof Nom) == 0 && std::strncmp(Prenom, a.Prenom, sizeof Prenom) == 0 &&
         std::strncmp(NomSoundex, a.NomSoundex, sizeof NomSoundex) == 0 &&
         std::strncmp(PrenomSoundex, a.PrenomSoundex, sizeof PrenomSoundex) == 0 && AnneeMin == a.AnneeMin &&
         AnneeMax == a.AnneeMax && NoPers == a.NoPers && RgNom == a.RgNom && RgPrenom == a.RgPrenom &&
         RgPrenomUsuel == a.RgPrenomUsuel && TypePersonne == a.TypePersonne && FicheSupprimee == a.FicheSupprimee &&
         Sexe == a.Sexe;
}

// Compare deux textes suivis chacun de l'octet 1, comme le font les textes de l'ordre. Rend
// 2 quand ils sont égaux (la suite départage), 3 quand un octet 1 dans un texte (ligne abîmée)
// empêche de conclure ici.
int CompareChamp(const char* a, size_t ta, const char* b, size_t tb) {
  const size_t na = Longueur(a, ta), nb = Longueur(b, tb);
  if (std::memchr(a, 1, na) || std::memchr(b, 1, nb)) return 3;
  const int c = std::memcmp(a, b, std::min(na, nb));
  if (c != 0) return c < 0 ? -1 : 1;
  if (na == nb) return 2;
  // Le plus court finit par l'octet 1, que tout octet de l'autre (2 et plus ici) dépasse.
  return na < nb ? -1 : 1;
}

int CompareLignesIndex(const TEnregIndex& a, const TEnregIndex& b) {
  // Le plus souvent le nom, sinon le prénom, décide : la clé entière (décimaux compris) ne se
  // bâtit que pour deux lignes de même nom et même prénom. Le tri d'un million de personnes en
  // fait des dizaines de millions.
  int c = CompareChamp(a.Nom, sizeof a.Nom, b.Nom, sizeof b.Nom);
  if (c == -1 || c == 1) return c;
  if (c == 2) {
    c = CompareChamp(a.Prenom, sizeof a.Prenom, b.Prenom, sizeof b.Prenom);
    if (c == -1 || c == 1) return c;
  }
  char ca[96], cb[96];
  const size_t na = CleOrdre(a, ca);
  const size_t nb = CleOrdre(b, cb);
  c = std::memcmp(ca, cb, std::min(na, nb));
  if (c != 0) return c;
  return na < nb ? -1 : (na > nb ? 1 : 0);
}

char* TEltIndex::Ecrit(char* p) const {
  EcritCompte(Enreg.Nom, sizeof Enreg.Nom, p);
  EcritCompte(Enreg.Prenom, sizeof Enreg.Prenom, p);
  EcritCompte(Enreg.NomSoundex, sizeof Enreg.NomSoundex, p);
  EcritCompte(Enreg.PrenomSoundex, sizeof Enreg.PrenomSoundex, p);
  EcritMemoire(&Enreg.AnneeMin, 2, p);
  EcritMemoire(&Enreg.AnneeMax, 2, p);
  EcritMemoire(&Enreg.NoPers, 4, p);
  EcritMemoire(&Enreg.RgNom, 2, p);
  EcritMemoire(&Enreg.RgPrenom, 2, p);
  EcritMemoire(&Enreg.RgPrenomUsuel, 2, p);
  EcritCar(Enreg.TypePersonne, p);
  EcritCar(Enreg.Sexe == ' ' ? char(0) : Enreg.Sexe, p);
  EcritCar(Enreg.FicheSupprimee, p);
  return p;
}

void TEltIndex::Lit(const char* p, long taille) {
  const char* fin = p + (taille > 0 ? taille : 0);
  LitCompte(Enreg.Nom, sizeof Enreg.Nom, p, fin);
  LitCompte(Enreg.Prenom, sizeof Enreg.Prenom, p, fin);
  LitCompte(Enreg.NomSoundex, sizeof Enreg.NomSoundex, p, fin);
  LitCompte(Enreg.PrenomSoundex, sizeof Enreg.PrenomSoundex, p, fin);
  LitMemoire(&Enreg.AnneeMin, 2, p, fin);
  LitMemoire(&Enreg.AnneeMax, 2, p, fin);
  LitMemoire(&Enreg.NoPers, 4, p, fin);
  LitMemoire(&Enreg.RgNom, 2, p, fin);
  LitMemoire(&Enreg.RgPrenom, 2, p, fin);
  LitMemoire(&Enreg.RgPrenomUsuel, 2, p, fin);
  Enreg.TypePersonne = LitCar(p, fin);
  Enreg.Sexe = LitCar(p, fin);
  if (Enreg.Sexe == ' ') Enreg.Sexe = 0;
  Enreg.FicheSupprimee = LitCar(p, fin);
  ID = 0;
}

int TEltIndex::GetTaille() const {
  return int(4 + Longueur(Enreg.Nom, sizeof Enreg.Nom - 1) + Longueur(Enreg.Prenom, sizeof Enreg.Prenom - 1) +
             Longueur(Enreg.NomSoundex, sizeof Enreg.NomSoundex - 1) +
             Longueur(Enreg.PrenomSoundex, sizeof Enreg.PrenomSoundex - 1) + 17);
}

}  // namespace rqbase
