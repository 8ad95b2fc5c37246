// Le lecteur de lignes GEDCOM : des octets d'un fichier aux lignes « niveau [@ref@] BALISE
// [valeur] » en texte interne (Windows-1252).
//
// Ce qu'un appelant peut tenir pour sûr :
// - Codages : marque d'ordre des octets d'abord (UTF-8, UTF-16 LE/BE), puis la ligne CHAR de
//   l'en-tête (UTF-8, ANSEL, ASCII, ANSI), puis l'UTF-8 s'il est bien formé, sinon du
//   Windows-1252. Un désaccord entre marque et CHAR, un codage inconnu, un caractère changé
//   en '?' sont dits au rapport ; la lecture continue.
// - Fins de ligne CR, LF, CR LF et LF CR ; les lignes vides et les blancs de tête sont sautés.
// - CONC et CONT sont joints à la ligne qu'ils continuent (CONT par un saut de ligne CR LF,
//   la forme des notes du dossier) et ne paraissent pas dans les lignes rendues.
// - « @@ » dans une valeur qui n'est pas une référence se lit « @ », suites comprises ; en
//   GEDCOM 7, seul un « @@ » en tête de ligne est un échappement.
// - Un niveau qui saute (2 après 0) est ramené au niveau du parent plus un et dit au rapport ;
//   une ligne sans niveau lisible est dite et sautée. Rien ne lève, rien ne boucle : le coût
//   est linéaire en la taille du fichier.
// - Les textes des lignes vivent dans un seul tampon : une ligne tient 16 octets.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "rqbase/gedcom/codages.h"
#include "rqbase/gedcom/rapport.h"

namespace rqbase {

struct TLigneGedcom {
  uint32_t Numero = 0;    // dans le fichier, à partir de 1
  uint32_t Debut = 0;     // position dans le tampon : référence, balise, valeur à la suite
  uint32_t LgValeur = 0;
  uint16_t Niveau = 0;
  uint8_t LgXref = 0;     // sans les '@'
  uint8_t LgTag = 0;
};
static_assert(sizeof(TLigneGedcom) == 16);

class TLignesGedcom {
 public:
  std::string_view Xref(const TLigneGedcom& l) const { return {Tampon.data() + l.Debut, l.LgXref}; }
  std::string_view Tag(const TLigneGedcom& l) const { return {Tampon.data() + l.Debut + l.LgXref, l.LgTag}; }
  std::string_view Valeur(const TLigneGedcom& l) const {
    return {Tampon.data() + l.Debut + l.LgXref + l.LgTag, l.LgValeur};
  }
  // La ligne recomposée.
  std::string Texte(const TLigneGedcom& l) const;
  // La ligne `i` telle qu'elle est dans le fichier (sa première ligne physique), pour le rapport.
  std::string Originale(uint32_t i) const;

  std::vector<TLigneGedcom> Lignes;
  // Le texte d'origine des seules lignes que leur recomposition ne redonne pas (blancs en
  // plus, niveau ramené, « @@ », suites jointes), coupé : un fichier ordinaire n'en a presque pas.
  std::unordered_map<uint32_t, std::string> Originales;
  std::string Tampon;
  TCodageGedcom Codage = TCodageGedcom::Inconnu;
};

// Lit tout le fichier. Les avertissements vont au rapport (r.Codage reçoit le codage lu).
// Un fichier de plus de 4 Gio, ou qui n'a aucune ligne GEDCOM, donne des lignes vides et
// une raison dans `refus` ; l'appelant refuse alors le fichier.
TLignesGedcom LitLignesGedcom(std::string_view octets, TRapportImport& r, std::string& refus);

}  // namespace rqbase
