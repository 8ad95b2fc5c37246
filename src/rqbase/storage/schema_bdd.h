// Schéma de la base relationnelle <nom>.adb : la seule description, dans le code,
// des huit tables, de leurs colonnes et de leurs index.
//
// Tout en découle : les CREATE TABLE et CREATE INDEX, les contrôles de structure
// à l'ouverture et les tailles maximales des textes. Une colonne porte le code de
// type du moteur (1 CHAR(n), 2 VARCHAR(n), 4 NVARCHAR(n), 5 TINYINT, 6 SMALLINT,
// 7 INTEGER, 8 BIGINT, 12 INTEGER PRIMARY KEY AUTOINCREMENT, 21 DOUBLE,
// 27 DATETIME, 31 BLOB, 33 MEMO) ; relu dans une base existante, ce code se déduit
// du type déclaré (TypeMoteurDepuisDeclare).
//
// Les noms d'index sont propres à chaque table, mais SQLite n'a qu'un espace de
// noms par base : l'index « ParID_EVEN » de Sources s'appelle donc
// « Sources_ParID_EVEN » dans le fichier (NomIndexSql). Un index primaire sur la
// colonne auto-incrémentée est la clé de ligne elle-même : il n'est pas créé à part.
#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace rqbase {

// Codes de type du moteur.
enum TTypeMoteur : int {
  TypeCharFixe = 1,
  TypeVarChar = 2,
  TypeNVarChar = 4,
  TypeEntierCourt = 5,
  TypeEntier16 = 6,
  TypeEntier32 = 7,
  TypeEntier64 = 8,
  TypeAutoIncrement = 12,
  TypeDouble = 21,
  TypeDateHeure = 27,
  TypeBlob = 31,
  TypeMemo = 33,
};

struct TColonneSchema {
  const char* Nom;
  int Type;    // TTypeMoteur
  int Taille;  // en caractères pour 1, 2 et 4 ; 0 sinon
};

struct TIndexSchema {
  const char* Nom;
  std::vector<const char*> Colonnes;
  bool Primaire;
};

struct TTableSchema {
  const char* Nom;
  std::vector<TColonneSchema> Colonnes;
  std::vector<TIndexSchema> Index;

  const TColonneSchema* Colonne(std::string_view nom) const;
  const TIndexSchema* IndexNomme(std::string_view nom) const;
};

// Les huit tables, dans l'ordre de création de CreateDataBase.
const std::vector<TTableSchema>& SchemaBDD();
// nullptr pour une table inconnue.
const TTableSchema* TableSchema(std::string_view nom);

// "VARCHAR(21)", "INTEGER PRIMARY KEY AUTOINCREMENT"...
std::string TypeDeclare(int typeMoteur, int taille);
// Relecture d'un type déclaré (casse indifférente) ; `clePrimaire` vient de
// PRAGMA table_info. 0 pour un type que le moteur ne connaît pas.
int TypeMoteurDepuisDeclare(std::string_view declare, bool clePrimaire);
// La taille entre parenthèses, 0 sans parenthèses ou illisible.
int TailleDepuisDeclare(std::string_view declare);

// Nom de l'index dans le fichier SQLite : "<table>_<index>".
std::string NomIndexSql(std::string_view table, std::string_view index);
// Vrai pour l'index primaire réduit à la colonne auto-incrémentée (non créé à part).
bool IndexEstCleDeLigne(const TTableSchema& table, const TIndexSchema& index);

// Texte SQL de création. Les noms sont entre guillemets doubles (_DATE, Date...).
std::string SqlCreationTable(const TTableSchema& table);
std::string SqlAjoutColonne(const TTableSchema& table, const TColonneSchema& colonne);
// Vide pour un index clé de ligne.
std::string SqlCreationIndex(const TTableSchema& table, const TIndexSchema& index);

// Un nom entre guillemets doubles pour le texte SQL.
std::string Guillemets(std::string_view nom);

}  // namespace rqbase
