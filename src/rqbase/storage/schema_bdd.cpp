#include "rqbase/storage/schema_bdd.h"

#include <cctype>
#include <charconv>

namespace rqbase {

namespace {

std::vector<TTableSchema> FabriqueSchema() {
  std::vector<TTableSchema> s;
  s.push_back({"Evenements",
               {
                   {"ID", TypeAutoIncrement, 0},
                   {"Type", TypeEntierCourt, 0},
                   {"LibelleChamps", TypeVarChar, 21},
                   {"Donnee", TypeVarChar, 101},
                   {"NoPersA", TypeEntier32, 0},
                   {"NoPersB", TypeEntier32, 0},
                   {"Acte", TypeCharFixe, 3},
                   {"TypeCalend", TypeCharFixe, 1},
                   {"Date", TypeCharFixe, 10},
                   {"Lieu", TypeEntier32, 0},
                   {"LieuDit", TypeVarChar, 51},
                   {"Note", TypeEntier32, 0},
                   {"NoIllustrationParDefaut", TypeEntier32, 0},
                   {"LienExtEven", TypeEntier32, 0},
                   {"_DONNEE", TypeVarChar, 20},
                   {"_DATE", TypeEntier32, 0},
                   {"RANG_A", TypeEntier32, 0},
                   {"RANG_B", TypeEntier32, 0},
                   {"DateLastModif", TypeDateHeure, 0},
               },
               {
                   {"ParID", {"ID"}, true},
                   {"ParType", {"Type"}, false},
                   {"ParLibEtDonnee", {"LibelleChamps", "_DONNEE", "NoPersA"}, false},
                   {"ParNoPersA", {"NoPersA", "RANG_A"}, false},
                   {"ParNoPersB", {"NoPersB", "RANG_B"}, false},
                   {"ParLieu", {"Lieu"}, false},
                   {"Par_DATE", {"_DATE"}, false},
                   {"Par_DateLastModif", {"DateLastModif"}, false},
               }});
  s.push_back({"Illustrations",
               {
                   {"ID_ILLUSTRATION", TypeAutoIncrement, 0},
                   {"ID_EVEN", TypeEntier32, 0},
                   {"CHEMIN", TypeVarChar, 260},
                   {"RANG", TypeEntier32, 0},
               },
               {
                   {"ParID_ILLUSTRATION", {"ID_ILLUSTRATION"}, true},
                   {"ParID_EVEN", {"ID_EVEN", "RANG", "ID_ILLUSTRATION"}, false},
               }});
  s.push_back({"Sources",
               {
                   {"ID_SOURCE", TypeAutoIncrement, 0},
                   {"ID_EVEN", TypeEntier32, 0},
                   {"TYPE", TypeVarChar, 30},
                   {"DESCRIPTIF", TypeVarChar, 300},
                   {"RANG", TypeEntier32, 0},
               },
               {
                   {"ParID_SOURCE", {"ID_SOURCE"}, true},
                   {"ParID_EVEN", {"ID_EVEN", "RANG", "ID_SOURCE"}, false},
               }});
  s.push_back({"PersAssociees",
               {
                   {"ID_PERSASSOC", TypeAutoIncrement, 0},
                   {"ID_EVEN", TypeEntier32, 0},
                   {"LienQualite", TypeEntier32, 0},
                   {"LienParente", TypeEntier32, 0},
                   {"LienPers_No", TypeEntier32, 0},
                   {"LienPers_NivNo", TypeCharFixe, 1},
                   {"Rang", TypeEntier32, 0},
               },
               {
                   {"ParID_PERSASSOC", {"ID_PERSASSOC"}, true},
                   {"ParID_EVEN", {"ID_EVEN", "ID_PERSASSOC"}, false},
                   {"ParLienPers_No", {"LienPers_No", "Rang", "ID_PERSASSOC"}, false},
               }});
  s.push_back({"TabInformations",
               {
                   {"Champs", TypeVarChar, 10},
                   {"Donnees", TypeVarChar, 20},
               },
               {
                   {"ParChamps", {"Champs"}, true},
               }});
  s.push_back({"Geolocalisation",
               {
                   {"ID_Lieu", TypeEntier32, 0},
                   {"Lieu_Dit", TypeVarChar, 51},
                   {"Latitude", TypeDouble, 0},
                   {"Longitude", TypeDouble, 0},
                   {"Status", TypeEntier32, 0},
                   {"CurrentAddress", TypeNVarChar, 120},
               },
               {
                   {"ParIDetLieu", {"ID_Lieu", "Lieu_Dit"}, true},
               }});
  s.push_back({"IndexNomPrenoms",
               {
                   {"ID", TypeAutoIncrement, 0},
                   {"Nom", TypeVarChar, 21},
                   {"Prenom", TypeVarChar, 21},
                   {"NomSoundex", TypeVarChar, 5},
                   {"PrenomSoundex", TypeVarChar, 5},
                   {"AnneeMin", TypeEntier16, 0},
                   {"AnneeMax", TypeEntier16, 0},
                   {"NoPers", TypeEntier64, 0},
                   {"RgNom", TypeEntier16, 0},
                   {"RgPrenom", TypeEntier16, 0},
                   {"RgPrenomUsuel", TypeEntier16, 0},
                   {"TypePersonne", TypeCharFixe, 3},
                   {"FicheSupprimee", TypeCharFixe, 3},
                   {"Sexe", TypeCharFixe, 3},
               },
               {
                   {"ParID", {"ID"}, true},
                   {"ParNoPers", {"NoPers"}, false},
               }});
  s.push_back({"NotesTranscription",
               {
                   {"ID", TypeAutoIncrement, 0},
                   {"ID_Event", TypeEntier32, 0},
                   {"NoPersA", TypeEntier32, 0},
                   {"NoPersB", TypeEntier32, 0},
                   {"ID_Illustration", TypeEntier32, 0},
                   {"Note", TypeMemo, 0},
                   {"Mot_Cle1", TypeEntier32, 0},
                   {"Mot_Cle2", TypeEntier32, 0},
                   {"Mot_Cle3", TypeVarChar, 20},
                   {"FileVect", TypeBlob, 0},
               },
               {
                   {"ParID", {"ID"}, true},
                   {"Par_IDEvent", {"ID_Event"}, false},
                   // Les colonnes de ces quatre index se lisent sur leur nom.
                   {"Par_IDIllustration", {"ID_Illustration"}, false},
                   {"Par_MotCle1", {"Mot_Cle1"}, false},
                   {"Par_MotCle2", {"Mot_Cle2"}, false},
                   {"Par_MotCle3", {"Mot_Cle3"}, false},
               }});
  return s;
}

bool EgalSansCasse(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (std::toupper(static_cast<unsigned char>(a[i])) != std::toupper(static_cast<unsigned char>(b[i])))
      return false;
  return true;
}

}  // namespace

const TColonneSchema* TTableSchema::Colonne(std::string_view nom) const {
  for (const auto& c : Colonnes)
    if (nom == c.Nom) return &c;
  return nullptr;
}

const TIndexSchema* TTableSchema::IndexNomme(std::string_view nom) const {
  for (const auto& i : Index)
    if (nom == i.Nom) return &i;
  return nullptr;
}

const std::vector<TTableSchema>& SchemaBDD() {
  static const std::vector<TTableSchema> schema = FabriqueSchema();
  return schema;
}

const TTableSchema* TableSchema(std::string_view nom) {
  for (const auto& t : SchemaBDD())
    if (nom == t.Nom) return &t;
  return nullptr;
}

std::string TypeDeclare(int typeMoteur, int taille) {
  const char* nom = "";
  bool avecTaille = false;
  switch (typeMoteur) {
    case TypeCharFixe: nom = "CHAR", avecTaille = true; break;
    case TypeVarChar: nom = "VARCHAR", avecTaille = true; break;
    case TypeNVarChar: nom = "NVARCHAR", avecTaille = true; break;
    case TypeEntierCourt: nom = "TINYINT"; break;
    case TypeEntier16: nom = "SMALLINT"; break;
    case TypeEntier32: nom = "INTEGER"; break;
    case TypeEntier64: nom = "BIGINT"; break;
    case TypeAutoIncrement: nom = "INTEGER PRIMARY KEY AUTOINCREMENT"; break;
    case TypeDouble: nom = "DOUBLE"; break;
    case TypeDateHeure: nom = "DATETIME"; break;
    case TypeBlob: nom = "BLOB"; break;
    case TypeMemo: nom = "MEMO"; break;
    default: break;
  }
  std::string declare = nom;
  if (avecTaille) {
    declare += '(';
    declare += std::to_string(taille);
    declare += ')';
  }
  return declare;
}

int TypeMoteurDepuisDeclare(std::string_view declare, bool clePrimaire) {
  const size_t par = declare.find('(');
  std::string_view base = declare.substr(0, par);
  while (!base.empty() && base.back() == ' ') base.remove_suffix(1);
  static const struct {
    const char* Nom;
    int Type;
  } types[] = {{"CHAR", TypeCharFixe},       {"VARCHAR", TypeVarChar}, {"NVARCHAR", TypeNVarChar},
               {"TINYINT", TypeEntierCourt}, {"SMALLINT", TypeEntier16}, {"BIGINT", TypeEntier64},
               {"DOUBLE", TypeDouble},       {"DATETIME", TypeDateHeure}, {"BLOB", TypeBlob},
               {"MEMO", TypeMemo}};
  // PRAGMA table_info rend "INTEGER" pour la colonne auto-incrémentée : c'est la
  // clé primaire qui la distingue d'un entier ordinaire.
  if (EgalSansCasse(base, "INTEGER")) return clePrimaire ? TypeAutoIncrement : TypeEntier32;
  for (const auto& t : types)
    if (EgalSansCasse(base, t.Nom)) return t.Type;
  return 0;
}

int TailleDepuisDeclare(std::string_view declare) {
  const size_t ouvre = declare.find('(');
  const size_t ferme = declare.find(')');
  if (ouvre == std::string_view::npos || ferme == std::string_view::npos || ferme <= ouvre + 1) return 0;
  int taille = 0;
  const char* debut = declare.data() + ouvre + 1;
  const char* fin = declare.data() + ferme;
  auto [p, ec] = std::from_chars(debut, fin, taille);
  if (ec != std::errc() || p != fin || taille < 0) return 0;
  return taille;
}

std::string Guillemets(std::string_view nom) {
  std::string r = "\"";
  for (char c : nom) {
    if (c == '"') r += '"';
    r += c;
  }
  return r + "\"";
}

std::string NomIndexSql(std::string_view table, std::string_view index) {
  return std::string(table) + "_" + std::string(index);
}

bool IndexEstCleDeLigne(const TTableSchema& table, const TIndexSchema& index) {
  if (!index.Primaire || index.Colonnes.size() != 1) return false;
  const TColonneSchema* c = table.Colonne(index.Colonnes[0]);
  return c != nullptr && c->Type == TypeAutoIncrement;
}

std::string SqlCreationTable(const TTableSchema& table) {
  std::string sql = "CREATE TABLE " + Guillemets(table.Nom) + " (";
  for (size_t i = 0; i < table.Colonnes.size(); ++i) {
    const auto& c = table.Colonnes[i];
    if (i) sql += ", ";
    sql += Guillemets(c.Nom) + " " + TypeDeclare(c.Type, c.Taille);
  }
  return sql + ")";
}

std::string SqlAjoutColonne(const TTableSchema& table, const TColonneSchema& colonne) {
  return "ALTER TABLE " + Guillemets(table.Nom) + " ADD COLUMN " + Guillemets(colonne.Nom) + " " +
         TypeDeclare(colonne.Type, colonne.Taille);
}

std::string SqlCreationIndex(const TTableSchema& table, const TIndexSchema& index) {
  if (IndexEstCleDeLigne(table, index)) return "";
  std::string sql = index.Primaire ? "CREATE UNIQUE INDEX " : "CREATE INDEX ";
  sql += Guillemets(NomIndexSql(table.Nom, index.Nom)) + " ON " + Guillemets(table.Nom) + " (";
  for (size_t i = 0; i < index.Colonnes.size(); ++i) {
    if (i) sql += ", ";
    sql += Guillemets(index.Colonnes[i]);
  }
  return sql + ")";
}

}  // namespace rqbase
