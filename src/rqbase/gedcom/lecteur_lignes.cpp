#include "rqbase/gedcom/lecteur_lignes.h"

#include <algorithm>

#include "rqbase/platform/cp1252.h"

namespace rqbase {

namespace {

constexpr size_t kTailleMax = 0xFFFF0000u;  // les positions du tampon tiennent en 32 bits
constexpr size_t kLgOriginale = 160;        // le rapport n'en montre que 120

bool Blanc(char c) { return c == ' ' || c == '\t'; }

// Découpe le texte en lignes brutes ; `fin` rend false quand il n'y en a plus. Le style des
// fins de ligne est celui de la première : une paire CR LF (ou LF CR) y compte pour une fin.
class TDecoupeur {
 public:
  explicit TDecoupeur(std::string_view t) : Texte(t) {
    const size_t p = t.find_first_of("\r\n");
    if (p != std::string_view::npos && p + 1 < t.size()) {
      if (t[p] == '\r' && t[p + 1] == '\n') Paire = "\r\n";
      if (t[p] == '\n' && t[p + 1] == '\r') Paire = "\n\r";
    }
  }
  bool Suivante(std::string_view& ligne) {
    if (Pos >= Texte.size()) return false;
    const size_t p = Texte.find_first_of("\r\n", Pos);
    if (p == std::string_view::npos) {
      ligne = Texte.substr(Pos);
      Pos = Texte.size();
    } else {
      ligne = Texte.substr(Pos, p - Pos);
      Pos = p + 1;
      if (!Paire.empty() && Texte[p] == Paire[0] && Pos < Texte.size() && Texte[Pos] == Paire[1]) ++Pos;
    }
    return true;
  }

 private:
  std::string_view Texte;
  std::string_view Paire;
  size_t Pos = 0;
};

// Les parties d'une ligne déjà en Windows-1252 ; false avec la raison si elle est illisible.
struct TParties {
  long Niveau = 0;
  bool NiveauLu = false;  // vrai dès que le niveau est lu, même si la suite est illisible
  std::string_view Xref, Tag, Valeur;
};

bool Decoupe(std::string_view l, TParties& p, std::string& raison) {
  size_t i = 0;
  while (i < l.size() && Blanc(l[i])) ++i;
  const size_t debutNiveau = i;
  while (i < l.size() && l[i] >= '0' && l[i] <= '9' && i - debutNiveau < 6) p.Niveau = p.Niveau * 10 + (l[i++] - '0');
  if (i == debutNiveau || (i < l.size() && !Blanc(l[i]))) {
    raison = "ligne illisible : elle ne commence pas par un niveau";
    return false;
  }
  p.NiveauLu = true;
  while (i < l.size() && Blanc(l[i])) ++i;
  if (i < l.size() && l[i] == '@') {
    const size_t fin = l.find('@', i + 1);
    if (fin == std::string_view::npos || fin == i + 1 || fin - i - 1 > 255 || fin + 1 >= l.size() ||
        !Blanc(l[fin + 1])) {
      raison = "référence illisible";
      return false;
    }
    p.Xref = l.substr(i + 1, fin - i - 1);
    i = fin + 1;
    while (i < l.size() && Blanc(l[i])) ++i;
  }
  const size_t debutTag = i;
  while (i < l.size() && !Blanc(l[i])) ++i;
  p.Tag = l.substr(debutTag, i - debutTag);
  if (p.Tag.empty()) {
    raison = "ligne sans balise";
    return false;
  }
  if (p.Tag.size() > 255) {
    raison = "balise de plus de 255 caractères";
    return false;
  }
  if (i < l.size()) p.Valeur = l.substr(i + 1);
  return true;
}

bool EstReference(std::string_view v) {
  return v.size() >= 3 && v.front() == '@' && v.back() == '@' && v.find(' ') == std::string_view::npos;
}

// Passe `voit` sur chaque ligne lisible de l'en-tête (dans les 64 premiers Kio, jusqu'au
// premier enregistrement de niveau 0 qui suit) avec son numéro ; `voit` rend true pour arrêter.
template <typename TVoit>
void ParcoursEnTete(std::string_view texte, TVoit voit) {
  TDecoupeur d(texte.substr(0, 65536));
  std::string_view brute;
  long no = 0;
  while (d.Suivante(brute)) {
    ++no;
    TParties p;
    std::string raison;
    if (!Decoupe(brute, p, raison)) continue;
    if (p.Niveau == 0 && no > 1) return;
    if (voit(p, no)) return;
  }
}

// Le codage annoncé par la ligne CHAR de l'en-tête.
std::string NomCodageAnnonce(std::string_view texte, long& ligneChar) {
  std::string nom;
  ParcoursEnTete(texte, [&](const TParties& p, long no) {
    if (p.Niveau != 1 || p.Tag != "CHAR") return false;
    ligneChar = no;
    size_t fin = p.Valeur.size();
    while (fin > 0 && Blanc(p.Valeur[fin - 1])) --fin;
    nom = std::string(p.Valeur.substr(0, fin));
    return true;
  });
  return nom;
}

// Vrai si l'en-tête annonce GEDCOM 7 (HEAD, GEDC, VERS 7...).
bool EnTeteGedcom7(std::string_view texte) {
  bool dansGedc = false, sept = false;
  ParcoursEnTete(texte, [&](const TParties& p, long) {
    if (p.Niveau == 1) dansGedc = p.Tag == "GEDC";
    if (p.Niveau != 2 || !dansGedc || p.Tag != "VERS") return false;
    sept = !p.Valeur.empty() && p.Valeur.front() == '7';
    return true;
  });
  return sept;
}

// La valeur d'une ligne sans l'échappement de ses '@' : en 5.5, chaque « @@ » se lit « @ » ;
// en 7.0, seul un « @@ » en tête de ligne est un échappement. Un renvoi reste tel quel.
std::string_view SansArobases(std::string_view v, bool gedcom7, std::string& tampon) {
  if (EstReference(v)) return v;
  if (gedcom7) return v.substr(0, 2) == "@@" ? v.substr(1) : v;
  if (v.find("@@") == std::string_view::npos) return v;
  tampon.assign(v);
  for (size_t k = tampon.find("@@"); k != std::string::npos; k = tampon.find("@@", k + 1)) tampon.erase(k, 1);
  return tampon;
}

}  // namespace

std::string TLignesGedcom::Originale(uint32_t i) const {
  if (const auto it = Originales.find(i); it != Originales.end()) return it->second;
  return Texte(Lignes[i]);
}

std::string TLignesGedcom::Texte(const TLigneGedcom& l) const {
  std::string t = std::to_string(l.Niveau) + " ";
  if (l.LgXref) t += "@" + std::string(Xref(l)) + "@ ";
  t += Tag(l);
  if (l.LgValeur) t += " " + std::string(Valeur(l));
  return t;
}

TLignesGedcom LitLignesGedcom(std::string_view octets, TRapportImport& r, std::string& refus) {
  TLignesGedcom res;
  if (octets.size() > kTailleMax) {
    refus = "Le fichier dépasse 4 Gio : il n'est pas lu.";
    return res;
  }
  size_t lgMarque = 0;
  const TCodageGedcom marque = CodageParMarque(octets, lgMarque);
  std::string converti;
  std::string_view texte = octets.substr(lgMarque);
  if (marque == TCodageGedcom::Utf16Le || marque == TCodageGedcom::Utf16Be) {
    converti = Utf16VersUtf8(texte, marque == TCodageGedcom::Utf16Be);
    texte = converti;
  }
  long ligneChar = 0;
  const std::string nomAnnonce = NomCodageAnnonce(texte, ligneChar);
  const TCodageGedcom annonce = CodageParNom(nomAnnonce);
  TCodageGedcom codage;
  if (marque != TCodageGedcom::Inconnu) {
    codage = marque;
    const bool unicode = annonce == TCodageGedcom::Utf8;
    if (!nomAnnonce.empty() && !unicode)
      r.Avertit(ligneChar, "1 CHAR " + nomAnnonce,
                std::string("le codage annoncé ne s'accorde pas avec la marque d'ordre des octets (") +
                    NomCodage(marque) + ") : la marque l'emporte");
  } else if (annonce != TCodageGedcom::Inconnu) {
    codage = annonce;
  } else {
    codage = EstUtf8Valide(texte) ? TCodageGedcom::Utf8 : TCodageGedcom::Ansi;
    if (!nomAnnonce.empty())
      r.Avertit(ligneChar, "1 CHAR " + nomAnnonce,
                std::string("codage inconnu : le fichier est lu en ") + NomCodage(codage));
  }
  res.Codage = codage;
  r.Codage = NomCodage(codage);
  const bool gedcom7 = EnTeteGedcom7(texte);
  std::string sansArobases;
  const bool enUtf8 = codage == TCodageGedcom::Utf8 || codage == TCodageGedcom::Utf16Le ||
                      codage == TCodageGedcom::Utf16Be;

  res.Tampon.reserve(texte.size());
  res.Lignes.reserve(texte.size() / 24);
  TDecoupeur d(texte);
  std::string_view brute;
  std::string ligne;
  long no = 0;
  int dernierNiveau = -1;
  // Le niveau d'une ligne illisible dont le niveau se lit : ses sous-lignes (plus profondes)
  // sont sautées avec elle, sans quoi elles iraient à l'enregistrement précédent. -1 : aucune.
  long niveauIllisible = -1;
  while (d.Suivante(brute)) {
    ++no;
    bool entier = true;
    if (enUtf8)
      entier = Utf8VersCp1252(brute, ligne);
    else if (codage == TCodageGedcom::Ansel)
      entier = AnselVersCp1252(brute, ligne);
    else
      ligne.assign(brute);
    size_t debut = 0;
    while (debut < ligne.size() && Blanc(ligne[debut])) ++debut;
    if (debut == ligne.size()) continue;  // ligne vide
    TParties p;
    std::string raison;
    if (!Decoupe(ligne, p, raison)) {
      if (res.Lignes.empty() && no > 1000) break;  // rien de GEDCOM dans le début du fichier
      r.Avertit(no, ligne, raison);
      if (p.NiveauLu && (niveauIllisible < 0 || p.Niveau <= niveauIllisible))
        niveauIllisible = std::min<long>(p.Niveau, dernierNiveau + 1);
      continue;
    }
    if (niveauIllisible >= 0) {
      if (p.Niveau > niveauIllisible) {
        r.Avertit(no, ligne, "ligne sautée : sa ligne de tête est illisible");
        continue;
      }
      niveauIllisible = -1;
    }
    if (!entier) r.Avertit(no, ligne, "caractère sans équivalent en Windows-1252, remplacé par « ? » ou sans son accent");
    long niveau = p.Niveau;
    if (niveau > 60000 || dernierNiveau >= 60000) {
      r.Avertit(no, ligne, "niveau trop profond : ligne sautée");
      continue;
    }
    if (niveau > dernierNiveau + 1) {
      r.Avertit(no, ligne,
                "saut de niveau (" + std::to_string(niveau) + " après " + std::to_string(dernierNiveau) +
                    ") : ligne lue au niveau " + std::to_string(dernierNiveau + 1));
      niveau = dernierNiveau + 1;
    }
    if (p.Tag == "CONC" || p.Tag == "CONT") {
      if (res.Lignes.empty() || res.Lignes.back().Niveau != niveau - 1) {
        r.Avertit(no, ligne, "suite (CONC/CONT) sans ligne à continuer");
        continue;
      }
      TLigneGedcom& parent = res.Lignes.back();
      // Le parent s'allonge : son texte d'origine est gardé tel qu'il était avant la suite.
      const auto indiceParent = static_cast<uint32_t>(res.Lignes.size() - 1);
      if (!res.Originales.count(indiceParent)) res.Originales.emplace(indiceParent, res.Texte(parent).substr(0, kLgOriginale));
      const size_t finParent = size_t(parent.Debut) + parent.LgXref + parent.LgTag + parent.LgValeur;
      if (finParent != res.Tampon.size()) {
        // Le parent n'est plus au bout du tampon : il y est recopié avant d'être allongé.
        const std::string copie = res.Tampon.substr(parent.Debut, finParent - parent.Debut);
        parent.Debut = static_cast<uint32_t>(res.Tampon.size());
        res.Tampon += copie;
      }
      const std::string_view suite = SansArobases(p.Valeur, gedcom7, sansArobases);
      size_t ajout = suite.size() + (p.Tag == "CONT" ? 2 : 0);
      if (res.Tampon.size() + ajout > kTailleMax) {
        refus = "Le fichier est trop grand pour être lu.";
        res.Lignes.clear();
        return res;
      }
      if (p.Tag == "CONT") res.Tampon += "\r\n";
      res.Tampon += suite;
      parent.LgValeur = static_cast<uint32_t>(parent.LgValeur + ajout);
      // La suite ne paraît pas dans les lignes rendues : ce qui la suit se juge sur son parent.
      dernierNiveau = parent.Niveau;
      continue;
    }
    if (res.Tampon.size() + ligne.size() > kTailleMax) {
      refus = "Le fichier est trop grand pour être lu.";
      res.Lignes.clear();
      return res;
    }
    TLigneGedcom l;
    l.Numero = static_cast<uint32_t>(no);
    l.Niveau = static_cast<uint16_t>(niveau);
    l.Debut = static_cast<uint32_t>(res.Tampon.size());
    l.LgXref = static_cast<uint8_t>(p.Xref.size());
    l.LgTag = static_cast<uint8_t>(p.Tag.size());
    res.Tampon += p.Xref;
    res.Tampon += p.Tag;
    const std::string_view valeur = SansArobases(p.Valeur, gedcom7, sansArobases);
    res.Tampon += valeur;
    l.LgValeur = static_cast<uint32_t>(valeur.size());
    // La recomposition redonne la ligne si elle a la même longueur (un seul blanc entre les
    // parties, aucun en tête, niveau sans zéro de tête), le même niveau et la même valeur.
    const size_t lgRecomposee = std::to_string(niveau).size() + 1 + (p.Xref.empty() ? 0 : p.Xref.size() + 3) +
                                p.Tag.size() + (p.Valeur.empty() ? 0 : p.Valeur.size() + 1);
    if (niveau != p.Niveau || lgRecomposee != ligne.size() || valeur.size() != p.Valeur.size())
      res.Originales.emplace(static_cast<uint32_t>(res.Lignes.size()), ligne.substr(0, kLgOriginale));
    res.Lignes.push_back(l);
    dernierNiveau = niveau;
  }
  if (res.Lignes.empty()) refus = "Ce fichier n'est pas un fichier GEDCOM : aucune ligne n'y a la forme « niveau balise valeur ».";
  return res;
}

}  // namespace rqbase
