// Les lignes par défaut du catalogue. Chaque ligne est composée en forme complète à
// partir d'une rangée de cette table ; les phrases viennent de PhrasesParDefaut.
#include "rqbase/fields/table_defaut.h"

#include <cstring>

#include "rqbase/fields/chp_cs.h"

namespace rqbase {
namespace {

struct TRangee {
  const char* libelle;
  const char* ecran;
  const char* type;
  const char* nb;
  const char* tailles;
  const char* noms;
  const char* tag;
  const char* sousTags;
  const char* dicos;
  const char* repete;
  const char* liaison;
  const char* symbole;
  const char* masculin;
  const char* feminin;
  const char* apresDeces;
  const char* valDefaut;
  const char* equivalents;
  const char* utiliseEquivalent;
  const char* avecResume;
};

// clang-format off
constexpr TRangee kRangees[] = {
  // libellé, écran, type, nb, largeurs, noms, GEDCOM, sous-balises, dictionnaires, répété, liaison,
  // symbole, masculin, féminin, après décès, défaut, équivalents, utilise, avec résumé
  {"NOM", "Nom", "NOM", "1", "40", "", "", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"PRENOM", "Prénoms", "PRENOM", "1", "60", "", "", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"SEXE", "Sexe", "SEXE", "0", "", "", "", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"SOSA", "No Sosa", "NOSOSA", "1", "20", "", "", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"IMAGE", "Image", "EC", "1", "100", "", "_IMG", "", "", "O", "P", "", "", "", "N", "0", "", "N", "O"},
  {"NAISSANCE", "Naissance", "ES", "1", "20", "", "BIRT", "", "", "N", "P", "°", "Né", "Née", "N", "0", "BAPTEME", "O", "O"},
  {"BAPTEME", "Baptême", "ES", "1", "20", "", "CHR", "", "", "N", "P", "b", "Baptisé", "Baptisée", "N", "0", "", "N", "O"},
  {"ADOPTION", "Adoption", "ES", "1", "20", "", "ADOP", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"SERVICE_MILITAIRE", "Service militaire", "ES", "1", "", "", "MILI", "", "44", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"RESIDENCE", "Résidence", "EC", "1", "60", "", "RESI", "ADDR", "", "O", "P", "", "", "", "N", "0", "", "N", "O"},
  {"CONCUBINAGE", "Concubinage", "ES", "1", "20", "", "_CCB", "", "", "N", "C", "", "", "", "N", "0", "BANS", "O", "O"},
  {"PACS", "Pacs", "ES", "1", "20", "", "_PCS", "", "", "N", "C", "", "", "", "N", "0", "CONCUBINAGE", "O", "O"},
  {"FIANCAILLES", "Fiançailles", "ES", "1", "20", "", "ENGA", "", "", "N", "C", "", "", "", "N", "0", "", "N", "O"},
  {"BANS", "Bans", "ES", "1", "20", "", "MARB", "", "30", "O", "C", "", "", "", "N", "0", "FIANCAILLES", "O", "O"},
  {"CTR-MARIAGE", "Contrat mariage", "ES", "1", "20", "", "MARC", "", "", "N", "C", "cm", "Marié par contrat", "Mariée par contrat", "N", "0", "PACS", "O", "O"},
  {"UNION", "Union", "ES", "1", "20", "", "MARR", "", "", "N", "C", "x", "Marié", "Mariée", "N", "0", "CTR-MARIAGE", "O", "O"},
  {"DIVORCE", "Divorce", "ES", "1", "20", "", "DIV", "", "", "N", "C", ")(", "Divorcé", "Divorcée", "N", "0", "", "N", "O"},
  {"RETRAITE", "Retraite", "ES", "1", "20", "", "RETI", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"RELATION", "Relation", "ES", "1", "20", "", "_REL", "", "", "O", "P", "", "", "", "N", "0", "", "N", "O"},
  {"RECENSEMENT", "Recensement", "EC", "4", "90, 4, 3, 3", "Quartier, n° maison, n° ménage, n° individu", "CENS", "", "", "O", "P", "", "", "", "N", "0", "", "N", "O"},
  {"DIPLOME", "Diplôme", "ES", "1", "20", "", "GRAD", "", "", "O", "P", "", "", "", "N", "0", "", "N", "N"},
  {"NATURALISAT", "Naturalisation", "ES", "1", "20", "", "NATU", "", "", "O", "P", "", "", "", "N", "0", "", "N", "O"},
  {"TESTAMENT", "Testament", "ES", "1", "20", "", "WILL", "", "", "O", "P", "", "", "", "N", "0", "", "N", "O"},
  {"BAR_MITZVAH", "Bar Mitzvah", "ES", "1", "20", "", "BARM", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"BAS_MITZVAH", "Bas Mitzvah", "ES", "1", "20", "", "BASM", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"DISPENSES_CONSANGUI", "Dispenses de consanguinité", "ES", "1", "20", "", "_DPC", "", "", "N", "C", "", "", "", "N", "0", "", "N", "O"},
  {"DISPENSES_AFFINITE", "Dispenses d'affinité", "ES", "1", "20", "", "_DPA", "", "", "N", "C", "", "", "", "N", "0", "", "N", "O"},
  {"DECORATION", "Décoration", "EC", "1", "60", "", "DECO", "", "", "O", "P", "", "", "", "N", "0", "", "N", "O"},
  {"EVENEMENT", "Evénement", "EC", "1", "60", "", "_EVT", "", "", "O", "P", "", "", "", "N", "0", "", "N", "O"},
  {"CHAHADA", "Chahada", "ES", "1", "20", "", "_CHD", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"EL_HADJ", "El hadj", "ES", "1", "20", "", "_ELH", "", "", "O", "P", "", "", "", "N", "0", "", "N", "O"},
  {"DECES", "Décès", "ES", "1", "20", "", "DEAT", "", "", "N", "P", "+", "Décédé", "Décédée", "N", "0", "INHUMATION", "O", "O"},
  {"INVENTAIRE_DECES", "Inventaire après décès", "ES", "1", "20", "", "_IVD", "", "", "N", "P", "", "", "", "O", "0", "", "N", "O"},
  {"INHUMATION", "Inhumation", "ES", "1", "20", "", "BURI", "", "", "N", "P", "(+)", "Inhumé", "Inhumée", "O", "0", "", "N", "O"},
  {"CREMATION", "Crémation", "ES", "1", "20", "", "CREM", "", "", "N", "P", "", "", "", "O", "0", "", "N", "O"},
  {"COHE_VALID", "Cohérences validées", "CPB", "1", "1", "", "_CHV", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"PROFESSION", "Professions", "EC", "1", "60", "", "OCCU", "", "", "O", "P", "", "", "", "N", "0", "", "N", "N"},
  {"SIGNATURE", "Signature", "CPB", "1", "1", "", "SIGN", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"EDUCATION", "Education", "CPA", "1", "60", "Niveau d'instruction", "EDUC", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"CONFIDENTIEL", "Confidentiel", "CPB", "1", "1", "", "_CFT", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"RELIGION", "Religion", "CPC", "8", "13, 12, 12, 12, 13, 13, 13, 13", "Anglicane, Athée, Boudhiste, Catholique, Juive, Musulmane, Orthodoxe, Protestante", "RELI", "", "", "O", "P", "", "", "", "N", "0", "", "N", "O"},
  {"NATIONALITE", "Nationalité", "CPA", "1", "40", "", "NATI", "", "", "O", "P", "", "", "", "N", "0", "", "N", "O"},
  {"TITRE", "Titre", "CPA", "1", "60", "", "TITL", "", "", "O", "P", "", "", "", "N", "0", "", "N", "O"},
  {"DCF", "Date de création", "DCF", "1", "16", "", "_DCT", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"DDMF", "Date dern. modif.", "DDMF", "1", "16", "", "CHAN", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"FILIATION_PERE", "Filiation avec le père", "CPB", "1", "1", "", "_FILP", "", "", "N", "N", "", "", "", "N", "0", "", "N", "O"},
  {"FILIATION_MERE", "Filiation avec la mère", "CPB", "1", "1", "", "_FILM", "", "", "N", "N", "", "", "", "N", "0", "", "N", "O"},
  {"EMAIL", "e-mail", "EMAIL", "1", "60", "", "EMAIL", "", "", "O", "P", "", "", "", "N", "0", "", "N", "O"},
  {"ABN_NOTIF", "Abonné à la notification", "CPB", "1", "1", "", "_AB_NOTIF", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"DDNOTIF", "Date de notification.", "DDNOTIF", "1", "16", "", "_DDNOTIF", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"S_P", "Personne sans descendance", "CPB", "1", "1", "", "_S_P", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"RELATION_PRIV", "Relation privilégiée", "ES", "1", "20", "", "_REL_PRIV", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"P_SA", "Ascendance inconnue", "CPB", "1", "1", "", "_P_SA", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"ORIGINE_DONNEE", "Origine de la donnée", "CPA", "1", "60", "", "_ORG", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"DISTANCECUM", "Mobilité en KM", "CPN", "1", "10", "", "_DISTANCECUM", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"FAVORIS", "Personne favorite", "CPB", "1", "1", "", "_FAVORIS", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"IMAGE_SIGNATURE", "Image Signature", "EC", "1", "100", "", "_IMG_SIGN", "", "", "O", "P", "", "", "", "N", "0", "", "N", "O"},
  {"SIGNALEMENT", "Signalement", "EC", "3", "20, 20, 10", "Cheveux, Yeux, Taille", "_SIGNALEMENT", "", "", "N", "P", "", "", "", "N", "0", "", "N", "O"},
  {"REGISTRE_MATRICULE", "Registre Matricule", "EC", "4", "20, 4, 5, 5", "Bureau, Classe, Matricule, Degré d'instruction", "_REGISTRE_MATRICULE", "", "", "N", "P", "", "", "", "N", "0", "RESIDENCE|SIGNALEMENT", "O", "O"},
};
// clang-format on

const TPhrasesDefaut kPhrases[] = {
    {"NAISSANCE",
     "#S (est né/est née|naît|voit le jour) #D #L$"
     "#S (est né/est née|naît|voit le jour) #L #D$"
     "#D (est né/est née|naît|voit le jour) #S #L$"
     "#L (est né/est née|naît|voit le jour) #S #D$"
     "(il est né/elle est née|il naît/elle naît|il voit le jour/elle voit le jour) #D #L$"
     "(il est né/elle est née|il naît/elle naît|il voit le jour/elle voit le jour) #L #D"},
    {"BAPTEME",
     "#S (est baptisé/est baptisée) #D #L$"
     "#D (est baptisé/est baptisée) #S #L$"
     "(il est baptisé/elle est baptisée) #D #L$"
     "#D, (a lieu son baptême) #L"},
    {"UNION", "#S (se sont unis|se sont mariés) #D #L$#D #S (se sont unis|se sont mariés) #L"},
    {"DECES",
     "#S (est décédé/est décédée|meurt|nous a quitté) #D #L$"
     "#D (est décédé/est décédée|meurt|nous a quitté) #S #L$"
     "#L (est décédé/est décédée|meurt|nous a quitté) #S #D"},
    {"RESIDENCE",
     "#S (habite|réside|demeure|est domicilié/est domiciliée) #L #D$"
     "#D, #S (habite|réside|demeure|est domicilié/est domiciliée) #L"},
    {"CTR-MARIAGE",
     "#S (établissent un contrat de mariage) #D #L$"
     "(Un contrat est établi) #D #L (avant le mariage de) #S$"
     "#S (font rédiger un contrat de mariage) #L #D"},
    {"FIANCAILLES", "#S (se fiancent) #D #L$#D, les (fiançailles de) #S (ont lieu) #L"},
    // Voulu : la parenthèse doublée de la première phrase reste telle quelle.
    {"PACS", "#S ((établissent un pacs) #D #L$#S (se pacsent) #L #D"},
    {"DIVORCE",
     "#S (divorcent) #D #L$"
     "#D, #S (divorcent) #L$"
     "(Le mariage de) #S (est dissous suite à la procédure de divorce) #D #L"},
    {"INHUMATION", "#S (est inhumé/est inhumée) #D #L$#D, #S (est inhumé/est inhumée) #L"},
    // PROCES est dans la mise à jour des phrases mais n'a pas de phrases par défaut.
    {"PROCES", ""},
};

const char* PhrasesDe(const char* libelle) {
  for (const auto& p : kPhrases)
    if (std::strcmp(p.Libelle, libelle) == 0) return p.Phrases;
  return "";
}

std::string Compose(const TRangee& r, const char* ecran, const char* avecResume) {
  const bool evenement = std::strcmp(r.type, "ES") == 0 || std::strcmp(r.type, "EC") == 0;
  const char* colonnes[] = {
      r.libelle, ecran, r.type, "", r.nb, r.tailles, r.noms, r.tag, r.sousTags, r.dicos, r.repete,
      r.liaison, r.symbole, r.masculin, r.feminin, r.apresDeces, "O", r.valDefaut,
      evenement ? r.equivalents : "", evenement ? r.utiliseEquivalent : "", PhrasesDe(r.libelle), avecResume,
      "0", "0", ""};
  std::string ligne;
  for (size_t i = 0; i < std::size(colonnes); ++i) {
    if (i) ligne += '\t';
    ligne += colonnes[i];
  }
  return ligne;
}

const TRangee& Rangee(const char* libelle) {
  for (const auto& r : kRangees)
    if (std::strcmp(r.libelle, libelle) == 0) return r;
  return kRangees[0];  // jamais atteint : les libellés demandés sont ceux de la table
}

}  // namespace

const std::vector<std::string>& LignesDefaut() {
  static const std::vector<std::string> lignes = [] {
    std::vector<std::string> v;
    for (const auto& r : kRangees) v.push_back(Compose(r, r.ecran, r.avecResume));
    return v;
  }();
  return lignes;
}

const std::vector<TAjoutMiseANiveau>& AjoutsMiseANiveau() {
  static const std::vector<TAjoutMiseANiveau> ajouts = [] {
    auto ligne = [](const char* l) { return Compose(Rangee(l), Rangee(l).ecran, Rangee(l).avecResume); };
    std::vector<TAjoutMiseANiveau> v;
    v.push_back({"FILIATION_PERE", {ligne("FILIATION_PERE"), ligne("FILIATION_MERE")}});
    for (const char* l : {"ORIGINE_DONNEE", "EMAIL", "ABN_NOTIF", "S_P", "RELATION_PRIV", "P_SA", "DDNOTIF",
                          "DISTANCECUM", "FAVORIS", "IMAGE_SIGNATURE"})
      v.push_back({l, {ligne(l)}});
    // Voulu : ajoutés à un dossier existant, ces trois champs ne se racontent pas en
    // phrases, et RECENSEMENT garde son libellé d'écran d'origine, « Recencement ».
    v.push_back({"SIGNALEMENT", {Compose(Rangee("SIGNALEMENT"), "Signalement", "N")}});
    v.push_back({"REGISTRE_MATRICULE", {Compose(Rangee("REGISTRE_MATRICULE"), "Registre Matricule", "N")}});
    v.push_back({"RECENSEMENT", {Compose(Rangee("RECENSEMENT"), "Recencement", "N")}});
    return v;
  }();
  return ajouts;
}

const std::vector<TPhrasesDefaut>& PhrasesParDefaut() {
  static const std::vector<TPhrasesDefaut> v(std::begin(kPhrases), std::end(kPhrases));
  return v;
}

const std::vector<TAbreviationDefaut>& AbreviationsParDefaut() {
  static const std::vector<TAbreviationDefaut> v = [] {
    std::vector<TAbreviationDefaut> r;
    for (const char* l : {"NAISSANCE", "BAPTEME", "UNION", "CTR-MARIAGE", "DECES", "INHUMATION"}) {
      const auto& g = Rangee(l);
      r.push_back({g.libelle, g.symbole, g.masculin, g.feminin});
    }
    return r;
  }();
  return v;
}

}  // namespace rqbase

namespace rqbase {

// Les modèles de note intégrés : 0 le signalement, 1 le registre matricule.
std::string ModeleNoteIntegre(int noModele) {
  switch (noModele) {
    case 0:
      return "Nez : ( Dos : , Base : , Hauteur : , Saillie : , Largeur : )\r\n"
             "Visage : \r\n"
             "Teint : \r\n"
             "Marques particulières : ";
    case 1:
      return "Liste des blessures :";
    default:
      return {};
  }
}

int NoModeleNoteDuLibelle(const std::string& libelleInterne) {
  if (libelleInterne == "SIGNALEMENT") return 0;
  if (libelleInterne == "REGISTRE_MATRICULE") return 1;
  return -1;
}

}  // namespace rqbase
