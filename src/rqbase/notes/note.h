// TNote : un curseur sur l'en-tête des notes d'une personne (ou d'un couple, d'un
// événement, d'une source) dans le fichier des notes.
//
// Deux sortes de chaînes pendent à un numéro de bloc :
//  - l'en-tête de notes : un seul bloc, `Suivant` à -1, dont le texte est le texte à
//    virgules (CommaText) d'une liste de paires titre, numéro du premier bloc du texte
//    ("%ld"). Un en-tête qui ne tient pas dans 507 caractères est coupé ;
//  - le texte d'une note : 507 caractères par bloc, `Suivant` le bloc d'après, 0 au dernier.
// Une note qui commence par « {\rtf1 » est en RTF, toute autre est du texte ordinaire ;
// les fins de ligne y sont gardées en CR LF.
//
// Le curseur tient le fichier, la liste des paires et le numéro de son en-tête (NoFiche).
// Numéros : -2 désigne le bloc 0, -3 garde le numéro du curseur, 0 aucun bloc. Un numéro
// qui n'est pas un bloc écrit du fichier se lit vide, sans lecture ni erreur : une chaîne
// s'arrête sur un `Suivant` hors du fichier, et ne suit jamais plus de 30000 blocs (une
// chaîne qui boucle finit là). Lire ne plante sur aucun fichier, même forgé.
//
// Écritures : rien dans un dossier en lecture seule ou en erreur ; un bloc de texte n'est
// jamais écrasé par un en-tête ; une chaîne neuve s'écrit avant l'en-tête qui la désigne, si
// bien qu'une panne laisse l'ancienne note entière (une chaîne RTF reprise se réécrit en
// place). Les blocs devenus inutiles restent dans le fichier, injoignables.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

#include "rqbase/notes/fic_notes.h"
#include "rqbase/util/liste_chaines.h"

namespace rqbase {

class TNote {
 public:
#pragma pack(push, 1)
  struct TEnreg {
    char Texte[508];  // 507 caractères au plus, l'octet 507 forcé à zéro à la lecture
    int32_t Suivant;  // bloc suivant, 0 aucun ; -1 dans un en-tête de notes
  };
#pragma pack(pop)

  // Un numéro sous 1 autre que -2 laisse le curseur vide ; sinon LectureEntete.
  TNote(TFicNotes* fic, long numero);

  // Un bloc. `autre`, s'il est donné, remplace le fichier pour cet appel. Avec `menage`
  // (et hors du bloc 0), le bloc lu passe par MenageEnreg. Un échec de lecture lève le
  // drapeau d'erreur du dossier et le genre d'erreur 1. Rend true si le bloc est venu.
  bool LectureElementaire(long numero, TEnreg& enreg, TFicNotes* autre = nullptr, bool menage = false);
  bool EnregistrementElementaire(long numero, const TEnreg& enreg, TFicNotes* autre = nullptr);
  // Lit d'un coup jusqu'à 1024 blocs depuis `numero` et suit la chaîne dans ce qui est
  // chargé ; `suite` dit si plus d'un bloc est venu. Rend le numéro suivant (0 : fin).
  long LectureEnLot(long numero, std::string& texte, bool& suite);

  void LectureEntete(long numero);
  // Voir note.cpp : false si le bloc n'est pas un en-tête, si le dossier est en erreur
  // ou si la liste a un nombre impair d'éléments.
  bool EnregistrementEntete(long numero);
  // Numéro positif : lit cet en-tête ; sinon un bloc neuf reçoit un en-tête vide et son
  // numéro revient dans `numero`.
  void NouvelleFiche(long& numero);

  // La position (premier bloc du texte) du titre, 0 s'il manque ; titre vide : la
  // première paire. Les titres se comparent sans tenir compte de la casse.
  long GetPositionTitre(const std::string& titre) const;
  void SetPositionTitre(const std::string& titre, long position);
  // Le titre est là avec une position non nulle.
  bool Existe(const std::string& titre) const;
  // Rang du titre dans la liste (rangs pairs seulement, sans tenir compte de la casse),
  // -1 s'il manque.
  int RangTitre(const std::string& titre) const;

  std::string LectureNote(const std::string& titre);
  std::string LectureNoteRubrique(long position);
  // LectureNote, en texte brut : un texte qui commence par « { » passe par
  // ConvertirRtfTxt ; un autre est coupé à 100000 caractères.
  std::string RecupNoteTxt(const std::string& titre);
  // Écrit le texte de la note ; rend true quand l'en-tête a dû partir dans un bloc neuf
  // (NoFiche) que l'appelant doit garder. Voir note.cpp.
  bool ModifNote(const std::string& titre, std::string& texte, TFicNotes* autre = nullptr);
  // Ajoute le titre avec la position 0 s'il manque, et écrit l'en-tête ; true s'il l'a ajouté.
  bool AjoutNoteContenuVide(const std::string& titre);
  // Ôte le titre et sa position (titre vide : toutes les paires) et écrit l'en-tête ; les
  // blocs du texte ne sont pas repris.
  void SupprimeNote(const std::string& titre);
  void Assign(const TNote& autre);

  // Défense contre les blocs abîmés : l'octet 507 à zéro ; un bloc de texte sans paire
  // CR LF ni « \rtf » se lit vide ; un `Suivant` sous -1 ou au-delà de NbBlocs devient 0.
  void MenageEnreg(TEnreg& enreg) const;

  TFicNotes* Fic() const { return Fichier; }
  long NoFiche = 0;
  TStringList Liste;

 private:
  static void MenageEnregPour(TEnreg& enreg, const TFicNotes* fic);
  bool EcritEntete(TFicNotes* cible, long numero);
  long LectureEnLot(TFicNotes* cible, long numero, std::string& texte, bool& suite, long& restant);

  TFicNotes* Fichier;
};

static_assert(sizeof(TNote::TEnreg) == 512, "un bloc de notes fait 512 octets");
static_assert(offsetof(TNote::TEnreg, Suivant) == 508);

}  // namespace rqbase
