#include "rqbase/fields/chp_cs.h"

#include <algorithm>
#include <charconv>
#include <climits>

#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/fields/fichier_dch.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/fichiers.h"

namespace rqbase {
namespace {

struct TCodeType {
  const char* code;
  int type;
  const char* texte;
  int style;
};

// CONFEXP est dans la table pour Code et RetTypeString, mais Decode l'ignore.
constexpr TCodeType kTypes[] = {
    {"NOM", tcNom, "Nom", 1},
    {"PRENOM", tcPrenom, "Prénoms", 1},
    {"SEXE", tcSexe, "Sexe", 1},
    {"NOSOSA", tcNoSosa, "N° Sosa-Strad.", 1},
    {"EMAIL", tcEmail, "E-mail", 2},
    {"DDMF", tcDdmf, "Date de dernière modification", 1},
    {"DCF", tcDcf, "Date de création", 1},
    {"ES", tcEs, "Evénement simple", 3},
    {"EC", tcEc, "Evénement avec info", 3},
    {"CPA", tcCpa, "Texte", 2},
    {"CPN", tcCpn, "Nombre", 2},
    {"CPD", tcCpd, "Date", 2},
    {"DDNOTIF", tcDdNotif, "Date de dernière notification", 1},
    {"CPC", tcCpc, "Liste de choix", 2},
    {"CPB", tcCpb, "Booléen : Vrai/Faux/? ", 2},
    {"CONFEXP", tcConfExp, "Booléen : Vrai/Faux/? ", 2},
};

const TCodeType* ChercheType(int type) {
  for (const auto& t : kTypes)
    if (t.type == type) return &t;
  return nullptr;
}


// Conversion tolérante : un entier décimal entouré de blancs, sinon `defaut`.
long EntierDef(std::string_view s, long defaut) {
  const std::string t = Trim(s);
  if (t.empty()) return defaut;
  const char* debut = t.data();
  if (*debut == '+') ++debut;
  long v = 0;
  const auto [fin, ec] = std::from_chars(debut, t.data() + t.size(), v);
  if (ec != std::errc() || fin != t.data() + t.size() || debut == fin) return defaut;
  return v;
}

std::string TrimDroite(std::string_view s) {
  size_t n = s.size();
  while (n > 0 && static_cast<unsigned char>(s[n - 1]) <= ' ') --n;
  return std::string(s.substr(0, n));
}

template <class T, class F>
std::string Joint(const std::vector<T>& v, F texte) {
  std::string r;
  for (size_t i = 0; i < v.size(); ++i) {
    if (i) r += ", ";
    r += texte(v[i]);
  }
  return r;
}

// Ramène la somme des largeurs à `limite` en ôtant un caractère au morceau le plus
// large, le premier trouvé en cas d'égalité, autant de fois qu'il le faut. Calculé par
// paliers : à un même niveau, les morceaux perdent chacun un caractère dans l'ordre.
void CoupeLargeurs(std::vector<short>& tailles, long limite) {
  long somme = 0;
  for (short t : tailles) somme += t;
  while (somme > limite) {
    const short haut = *std::max_element(tailles.begin(), tailles.end());
    short dessous = 0;
    long nbHaut = 0;
    for (short t : tailles) {
      if (t == haut)
        ++nbHaut;
      else
        dessous = std::max(dessous, t);
    }
    const long exces = somme - limite;
    if (exces >= nbHaut * (haut - dessous)) {
      for (short& t : tailles)
        if (t == haut) t = dessous;
      somme -= nbHaut * (haut - dessous);
      continue;
    }
    const long tous = exces / nbHaut;
    long reste = exces % nbHaut;
    for (short& t : tailles) {
      if (t != haut) continue;
      t = short(t - tous - (reste > 0 ? 1 : 0));
      if (reste > 0) --reste;
    }
    somme = limite;
  }
}

// Les glyphes de la police de symboles de l'application, un octet par événement.
struct TGlyphe {
  const char* libelle;
  char glyphe;
};
constexpr TGlyphe kGlyphes[] = {
    {"NAISSANCE", '*'}, {"BAPTEME", '~'}, {"UNION", 'x'},
    {"CTR-MARIAGE", 'c'}, {"DECES", '+'}, {"INHUMATION", '#'},
};

// Repère d'une union dans un résumé (mode 0 de RetourneIdentEven).
constexpr const char* kMarqueUnion = "x";

}  // namespace

TChpCs::TChpCs(bool estNouveau) : EstNouveau(estNouveau) {
  Expressions.Delimiter = '$';
  Expressions.StrictDelimiter = true;
}

TChpCs::TChpCs(const TChpCs* source) : TChpCs(source ? source->EstNouveau : false) {
  if (!source) return;
  CopieDe(*source);
  NoModele = source->NoModele;
  Rang1 = source->Rang1;
  Rang2 = source->Rang2;
  // Voulu : une copie dit toujours Oui/Non en toutes lettres.
  OuiNon = true;
}

void TChpCs::CopieDe(const TChpCs& s) {
  NbMorceaux = s.NbMorceaux;
  CheminModele = s.CheminModele;
  LibelleInterne = s.LibelleInterne;
  LibelleEcran = s.LibelleEcran;
  Type = s.Type;
  Description = s.Description;
  TailleMorceaux = s.TailleMorceaux;
  NomMorceaux = s.NomMorceaux;
  TagGedCom = s.TagGedCom;
  SousTagGedCom = s.SousTagGedCom;
  IndexFicDupli = s.IndexFicDupli;
  Repete = s.Repete;
  ApresDeces = s.ApresDeces;
  OuiNon = s.OuiNon;
  ValDefaut = s.ValDefaut;
  Liaison = s.Liaison;
  Symbole = s.Symbole;
  LibelleMasculin = s.LibelleMasculin;
  LibelleFeminin = s.LibelleFeminin;
  Equivalents = s.Equivalents;
  UtiliseEquivalent = s.UtiliseEquivalent;
  Expressions.Clear();
  for (const auto& e : s.Expressions.Lignes()) Expressions.Add(e);
  AvecResume = s.AvecResume;
  Entier1 = s.Entier1;
  Entier2 = s.Entier2;
}

void TChpCs::SetNbMorceaux(int n) {
  if (n < 0) n = 0;
  NbMorceaux = n;
  TailleMorceaux.resize(size_t(n), 15);
  NomMorceaux.resize(size_t(n));
  SousTagGedCom.resize(size_t(n));
  IndexFicDupli.resize(size_t(n), 0);
  if (n == 0) {
    TailleMorceaux.shrink_to_fit();
    NomMorceaux.shrink_to_fit();
    SousTagGedCom.shrink_to_fit();
    IndexFicDupli.shrink_to_fit();
  }
}

void TChpCs::Decode(const std::string& ligne) {
  const auto cols = DecoupeElts(ligne, '\t');
  const int nbTab = cols.empty() ? 0 : int(cols.size()) - 1;
  auto col = [&](int no) -> std::string_view {
    return no >= 1 && no <= int(cols.size()) ? cols[size_t(no - 1)] : std::string_view();
  };

  LibelleInterne = std::string(col(1));
  LibelleEcran = std::string(col(2));
  // Voulu : un code inconnu, CONFEXP compris, laisse le type par défaut (événement simple).
  Type = tcEs;
  for (const auto& t : kTypes) {
    if (t.type != tcConfExp && col(3) == t.code) {
      Type = t.type;
      break;
    }
  }
  Description = std::string(col(4));
  const long nb = EntierDef(col(5), 0);
  SetNbMorceaux(0);
  SetNbMorceaux(int(std::clamp<long>(nb, 0, kNbMorceauxMax)));
  DecompTailleMorceau(std::string(col(6)));
  DecompNomMorceaux(std::string(col(7)));
  TagGedCom = std::string(col(8));
  DecompSousTagGedCom(std::string(col(9)));
  DecompIndexFicDupli(std::string(col(10)));
  Repete = col(11) == "O";
  Liaison = col(12).empty() ? 'P' : col(12)[0];

  if (nbTab < 13) {
    Symbole.clear();
    LibelleMasculin.clear();
    LibelleFeminin.clear();
    ValDefaut = 0;
  } else {
    Symbole = std::string(col(13));
    LibelleMasculin = std::string(col(14));
    LibelleFeminin = std::string(col(15));
  }
  if (nbTab < 15)
    ApresDeces = LibelleInterne == "INHUMATION" || LibelleInterne == "INVENTAIRE_DECES" ||
                 LibelleInterne == "CREMATION";
  else
    ApresDeces = col(16) == "O";
  // Voulu : la colonne 17 n'est pas lue, un booléen se dit toujours Oui/Non.
  OuiNon = true;
  if (nbTab >= 13) {
    const auto v = col(18);
    if (v.empty())
      ValDefaut = 0;
    else if (v[0] == '-')
      ValDefaut = -1;
    else if (v[0] >= '0' && v[0] <= '9')
      ValDefaut = v[0] - '0';  // Voulu : seul le premier chiffre compte ("12" donne 1).
    else
      ValDefaut = 0;
  }
  if (nbTab <= 18) {
    Equivalents.clear();
    UtiliseEquivalent = false;
  } else {
    Equivalents = std::string(col(19));
    UtiliseEquivalent = col(20) == "O";
  }
  Expressions.Clear();
  if (nbTab > 19) Expressions.SetDelimitedText(std::string(col(21)));
  if (nbTab <= 20)
    AvecResume = !(LibelleInterne == "PROFESSION" || LibelleInterne == "DIPLOME");
  else
    AvecResume = col(22) == "O";
  if (nbTab < 23) {
    Entier1 = Entier2 = 0;
  } else {
    Entier1 = int(std::clamp<long>(EntierDef(col(23), 0), INT_MIN, INT_MAX));
    Entier2 = int(std::clamp<long>(EntierDef(col(24), 0), INT_MIN, INT_MAX));
  }
  CheminModele = nbTab < 24 ? std::string() : std::string(col(25));
  NoModele = NoModeleNoteDuLibelle(LibelleInterne);
}

std::string TChpCs::Code() const {
  auto on = [](bool b) { return b ? "O" : "N"; };
  std::string r;
  r.reserve(256);
  auto ajoute = [&](const std::string& s) {
    r += s;
    r += '\t';
  };
  ajoute(LibelleInterne);
  ajoute(LibelleEcran);
  ajoute(CodeType(Type));
  ajoute(Description);
  ajoute(std::to_string(NbMorceaux));
  ajoute(RetTailleMorceauChn());
  ajoute(RetNomMorceauxChn());
  ajoute(TagGedCom);
  ajoute(RetSousTagGedComChn());
  ajoute(RetIndexFicDupliChn());
  ajoute(on(Repete));
  ajoute(std::string(1, Liaison));
  ajoute(Symbole);
  ajoute(LibelleMasculin);
  ajoute(LibelleFeminin);
  ajoute(on(ApresDeces));
  ajoute(on(OuiNon));
  ajoute(ValDefaut == -1 ? std::string("-") : std::to_string(ValDefaut));
  if (IsEvenement()) {
    ajoute(Equivalents);
    ajoute(on(UtiliseEquivalent));
  } else {
    ajoute("");
    ajoute("");
  }
  ajoute(Expressions.DelimitedText());
  ajoute(on(AvecResume));
  ajoute(std::to_string(Entier1));
  ajoute(std::to_string(Entier2));
  r += CheminModele;
  return r;
}

void TChpCs::DecompTailleMorceau(const std::string& liste) {
  const auto elts = DecoupeElts(liste, ',');
  for (int i = 0; i < NbMorceaux && size_t(i) < elts.size(); ++i) {
    // Une largeur illisible laisse celle du morceau (15 pour un morceau neuf).
    const long v = EntierDef(elts[size_t(i)], -1);
    if (v >= 0 && v <= SHRT_MAX) TailleMorceaux[size_t(i)] = short(v);
  }
  CoupeLargeurs(TailleMorceaux, kTailleValeurMax);
}

void TChpCs::DecompNomMorceaux(const std::string& liste) {
  const auto elts = DecoupeElts(liste, ',');
  if (Type == tcCpc) {
    // Une liste de choix : les noms sont les choix, leur nombre fait les morceaux.
    SetNbMorceaux(int(std::min<size_t>(elts.size(), kNbMorceauxMax)));
    size_t plusLong = 0;
    for (int i = 0; i < NbMorceaux; ++i) {
      NomMorceaux[size_t(i)] = Trim(elts[size_t(i)]);
      plusLong = std::max(plusLong, NomMorceaux[size_t(i)].size());
    }
    if (NbMorceaux > 0) TailleMorceaux[0] = short(std::min<size_t>(plusLong + 2, SHRT_MAX));
    return;
  }
  for (int i = 0; i < NbMorceaux; ++i)
    NomMorceaux[size_t(i)] = size_t(i) < elts.size() ? Trim(elts[size_t(i)]) : std::string();
}

void TChpCs::DecompSousTagGedCom(const std::string& liste) {
  const auto elts = DecoupeElts(liste, ',');
  for (int i = 0; i < NbMorceaux; ++i)
    SousTagGedCom[size_t(i)] = size_t(i) < elts.size() ? Trim(elts[size_t(i)]) : std::string();
}

void TChpCs::DecompIndexFicDupli(const std::string& liste) {
  const auto elts = DecoupeElts(liste, ',');
  for (int i = 0; i < NbMorceaux; ++i) {
    const long v = size_t(i) < elts.size() ? EntierDef(elts[size_t(i)], 0) : 0;
    // Un numéro négatif ne désigne aucun dictionnaire.
    IndexFicDupli[size_t(i)] = v < 0 ? 0 : v;
  }
}

std::string TChpCs::RetTailleMorceauChn() const {
  return Joint(TailleMorceaux, [](short t) { return std::to_string(t); });
}
std::string TChpCs::RetNomMorceauxChn() const {
  return Joint(NomMorceaux, [](const std::string& s) { return s; });
}
std::string TChpCs::RetSousTagGedComChn() const {
  return Joint(SousTagGedCom, [](const std::string& s) { return s; });
}
std::string TChpCs::RetIndexFicDupliChn() const {
  return Joint(IndexFicDupli, [](long v) { return std::to_string(v); });
}

std::string TChpCs::RetTypeString(int type) {
  const auto* t = ChercheType(type);
  return t ? t->texte : "Autres !";
}
std::string TChpCs::RetTypeString() const { return RetTypeString(Type); }

int TChpCs::RetStyleDonnee() const {
  const auto* t = ChercheType(Type);
  return t ? t->style : 0;
}

std::string TChpCs::CodeType(int type) {
  const auto* t = ChercheType(type);
  return t ? t->code : "";
}

bool TChpCs::IsSimple() const {
  switch (Type) {
    case tcEmail: case tcCpa: case tcCpn: case tcCpd: case tcCpc: case tcCpb: case tcConfExp:
      return true;
    default:
      return false;
  }
}

bool TChpCs::IsCache() const { return LibelleInterne == "COHE_VALID" || LibelleInterne == "ID_PERS"; }

bool TChpCs::IsIgnored() const { return IsCache() || LibelleInterne == "DISTANCECUM"; }

bool TChpCs::IsEvenementUnion(const TDefChpsCs* catalogue) const {
  if (LibelleInterne == "UNION") return true;
  if (!catalogue) return false;
  const TChpCs* u = catalogue->RechercheChampsInternePtr("UNION");
  if (!u) return false;
  const auto equiv = u->GetEquivalences(catalogue, true);
  return std::find(equiv.begin(), equiv.end(), LibelleInterne) != equiv.end();
}

bool TChpCs::ChpNonModifiable() const {
  return (Type >= tcNom && Type <= tcDcf) || Type == tcDdNotif || LibelleInterne == "CONFIDENTIEL_EXP" ||
         LibelleInterne == "ABN_NOTIF";
}

bool TChpCs::HasSousChamps() const {
  switch (Type) {
    case tcNom: case tcPrenom: case tcEs: case tcEc:
      return true;
    case tcEmail: case tcCpa: case tcCpn: case tcCpd:
      return NbMorceaux >= 2 || (NbMorceaux == 1 && !NomMorceaux[0].empty());
    default:
      return false;
  }
}

std::string TChpCs::RetourneChn() const { return LibelleEcran + " " + RetTypeString(); }

std::string TChpCs::RetourneIdentEven(EnumIdentifEvts mode, bool feminin) const {
  switch (mode) {
    case ieInitiale:
      if (LibelleInterne == "UNION") return std::string(kMarqueUnion) + " :";
      return LibelleEcran.substr(0, 1) + " :";
    case ieSymbole:
      return Symbole;
    case ieGlyphe:
      for (const auto& g : kGlyphes)
        if (LibelleInterne == g.libelle) return std::string(1, g.glyphe);
      return {};
    case ieLibelle:
      return (LibelleEcran.empty() ? LibelleInterne : LibelleEcran) + " :";
    case ieParticipe:
      return feminin ? LibelleFeminin : LibelleMasculin;
  }
  return {};
}

std::string TChpCs::GetMorceauNo(int n, const std::string& valeur) const {
  if (NbMorceaux <= 0) return {};
  if (n < 1 || n > NbMorceaux) n = 1;
  size_t position = 0;
  for (int i = 0; i < n - 1; ++i) position += size_t(std::max<short>(TailleMorceaux[size_t(i)], 0));
  if (position >= valeur.size()) return {};
  return TrimDroite(std::string_view(valeur).substr(position, size_t(std::max<short>(TailleMorceaux[size_t(n - 1)], 0))));
}

void TChpCs::SetMorceauNo(int n, const std::string& morceau, std::string& valeur, int taille) const {
  if (taille < 0) taille = 0;
  if (NbMorceaux <= 1) {
    valeur = morceau.substr(0, size_t(taille));
    return;
  }
  if (n < 1 || n > NbMorceaux) n = 1;
  size_t position = 0;
  for (int i = 0; i < n - 1; ++i) position += size_t(std::max<short>(TailleMorceaux[size_t(i)], 0));
  const size_t largeur = size_t(std::max<short>(TailleMorceaux[size_t(n - 1)], 0));
  if (valeur.size() < position + largeur) valeur.resize(position + largeur, ' ');
  std::string m = morceau.substr(0, largeur);
  m.resize(largeur, ' ');
  valeur.replace(position, largeur, m);
  if (valeur.size() > size_t(taille)) valeur.resize(size_t(taille));
}

char TChpCs::GetValParDefaut() const {
  if (ValDefaut == 0) return 'N';
  if (ValDefaut == 1) return 'O';
  return '?';
}

std::string TChpCs::FormatChaine(const std::string& s) const {
  if (s == "N") return "Incertaine";
  if (s == "O") return "Certaine";
  if (s == "?") return "Indéterminée";
  return FormatChaine(std::string(1, GetValParDefaut()));
}

std::string TChpCs::ResumeDonnee(const std::string& valeur) const {
  const bool filiation = LibelleInterne == "FILIATION_PERE" || LibelleInterne == "FILIATION_MERE";
  const bool booleen = (Type == tcCpb || Type == tcConfExp) && OuiNon;
  const int nb = Type == tcCpc ? std::min(NbMorceaux, 1) : NbMorceaux;
  std::string r;
  size_t position = 0;
  for (int i = 0; i < nb; ++i) {
    const size_t largeur = size_t(std::max<short>(TailleMorceaux[size_t(i)], 0));
    std::string m = position < valeur.size() ? TrimDroite(std::string_view(valeur).substr(position, largeur)) : "";
    position += largeur;
    if (filiation)
      m = FormatChaine(m);
    else if (booleen && m == "N")
      m = "Non";
    else if (booleen && m == "O")
      m = "Oui";
    // Voulu : les morceaux vides sont joints aussi, seul le tout est rogné.
    if (i) r += " - ";
    r += m;
  }
  return Trim(r);
}

std::vector<std::string> TChpCs::GetEquivalences(const TDefChpsCs* catalogue, bool cascade) const {
  TStringList resultat, vus;
  resultat.CaseSensitive = vus.CaseSensitive = true;
  GetEquivalencesCascades(catalogue, resultat, vus, cascade);
  return resultat.Lignes();
}

void TChpCs::GetEquivalencesCascades(const TDefChpsCs* catalogue, TStringList& resultat, TStringList& vus,
                                     bool cascade) const {
  if (vus.IndexOf(LibelleInterne) >= 0) return;
  vus.Add(LibelleInterne);
  for (auto e : DecoupeElts(Equivalents, '|')) {
    const std::string libelle(e);
    if (libelle.empty() || libelle == LibelleInterne || resultat.IndexOf(libelle) >= 0) continue;
    if (vus.IndexOf(libelle) >= 0) continue;
    resultat.Add(libelle);
    if (!cascade || !catalogue) continue;
    if (const TChpCs* c = catalogue->RechercheChampsInternePtr(libelle))
      c->GetEquivalencesCascades(catalogue, resultat, vus, cascade);
  }
}

std::string TChpCs::GetPathModelNote(const std::string& dossierCatalogue) const {
  if (!CheminModele.empty()) return CheminSysteme(CheminModele);
  return AjouteSlashSiNecessaire(dossierCatalogue) + LibelleInterne + "_MODEL.txt";
}

bool TChpCs::ExistModelNote(const std::string& dossierCatalogue) const {
  return NoModele != -1 || FichierExiste(GetPathModelNote(dossierCatalogue));
}

std::string TChpCs::GetModelNote(const std::string& dossierCatalogue) const {
  const std::string chemin = GetPathModelNote(dossierCatalogue);
  std::string texte;
  if (FichierExiste(chemin) && LitFichierTexte(chemin, texte)) {
    TStringList lignes;
    lignes.SetText(texte);
    std::string r;
    for (int i = 0; i < lignes.Count(); ++i) {
      if (i) r += "\r\n";
      r += lignes[i];
    }
    return r;
  }
  return ModeleNoteIntegre(NoModele);
}

bool TChpCs::SaveModelNote(const std::string& dossierCatalogue, const std::string& texte) const {
  const std::string chemin = GetPathModelNote(dossierCatalogue);
  // Le modèle intégré n'a pas besoin de fichier : un fichier existant est vidé. Sans
  // modèle intégré, le modèle est le texte vide : l'enregistrer ne crée aucun fichier.
  if (texte == ModeleNoteIntegre(NoModele)) {
    if (FichierExiste(chemin)) return EcritFichierTexte(chemin, "");
    return true;
  }
  return EcritFichierTexte(chemin, texte);
}

bool TChpCs::MemeStructure(const TChpCs& autre) const {
  return Type == autre.Type && NbMorceaux == autre.NbMorceaux && Liaison == autre.Liaison;
}

}  // namespace rqbase
