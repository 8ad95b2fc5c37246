// Les codages d'un fichier GEDCOM et leur passage au texte interne (Windows-1252).
//
// Un fichier dit son codage de deux façons : une marque d'ordre des octets (BOM) en tête,
// et la ligne « 1 CHAR » de son en-tête. La marque l'emporte quand les deux ne s'accordent
// pas : elle est posée par l'outil qui a écrit les octets, la ligne par l'utilisateur.
// Sans l'une ni l'autre, le fichier est lu comme de l'UTF-8 s'il en est, du Windows-1252
// sinon. Aucune fonction ne lève d'exception ; un caractère qui n'a pas d'équivalent en
// Windows-1252 devient '?', et l'appelant est prévenu pour le dire au rapport.
#pragma once
#include <string>
#include <string_view>

namespace rqbase {

enum class TCodageGedcom { Utf8, Utf16Le, Utf16Be, Ansel, Ascii, Ansi, Inconnu };

// Le nom du codage tel que le rapport le montre ("UTF-8", "ANSEL"...).
const char* NomCodage(TCodageGedcom c);

// Le codage d'après la marque d'ordre des octets (ou, faute de marque, les zéros d'un texte
// UTF-16 qui commence par un chiffre) ; `lgMarque` reçoit la longueur de la marque.
// Inconnu quand les octets ne disent rien.
TCodageGedcom CodageParMarque(std::string_view octets, size_t& lgMarque);

// Le codage que nomme la valeur d'une ligne CHAR ("UTF-8", "ANSEL", "ANSI", "IBMPC"...) ;
// Inconnu pour un nom que ce programme ne sait pas lire.
TCodageGedcom CodageParNom(std::string_view nom);

// UTF-16 (petit ou gros boutien, sans la marque) vers UTF-8 ; une moitié de paire isolée
// devient U+FFFD. Un octet impair en fin est ignoré.
std::string Utf16VersUtf8(std::string_view octets, bool grosBoutien);

// Une ligne ANSEL (Z39.47) en Windows-1252 : les diacritiques qui précèdent leur lettre sont
// composés quand Windows-1252 a la lettre accentuée, sinon la lettre reste seule. Rend
// false si quelque chose a été perdu (accent sans équivalent, caractère inconnu -> '?').
bool AnselVersCp1252(std::string_view ansel, std::string& sortie);

// Une ligne UTF-8 en Windows-1252 ; false si un caractère a dû devenir '?'.
bool Utf8VersCp1252(std::string_view utf8, std::string& sortie);

}  // namespace rqbase
