// L'import d'un fichier GEDCOM (5.5, 5.5.1, 7.0) dans un dossier ouvert en écriture.
//
// Ce qu'un appelant peut tenir pour sûr :
// - Un fichier illisible (aucune ligne GEDCOM, plus de 4 Gio) lève ERqBase avec la raison en
//   français avant la première écriture : le dossier n'a pas changé d'un octet.
// - Les faits passent par le catalogue du dossier : une balise d'événement ou d'attribut
//   (BIRT, OCCU, _CCB...) va au champ qui la porte, une sous-balise au morceau qui la porte ;
//   EVEN et FACT vont au champ dont le libellé est leur TYPE. Ce que le catalogue n'a pas est
//   dit au rapport. Seules les balises de structure (NAME, SEX, FAMC, FAMS, HUSB, WIFE, CHIL,
//   DATE, PLAC, SOUR, OBJE, NOTE, ASSO, TYPE) sont connues du code.
// - Chaque personne est écrite une fois, liens de famille compris : les familles sont lues
//   en entier, vérifiées (références absentes, cycles de parents, 151e conjoint ou enfant,
//   enfant de deux familles), puis les personnes écrites avec leurs liens déjà symétriques.
//   Un lien refusé n'est écrit d'aucun côté et il est dit au rapport.
// - Les numéros des personnes suivent l'ordre des INDI du fichier, à la suite de ceux du
//   dossier ; l'écriture se fait en mode import de la base (une validation par 1000 lignes).
// - La progression reçoit le nombre de personnes ; son abandon n'est suivi qu'avant la
//   première écriture (s'arrêter au milieu laisserait des liens vers des personnes à venir).
// - Une erreur d'écriture au milieu lève ERqBase et laisse le dossier à moitié importé : c'est
//   à l'appelant, qui seul peut fermer le dossier, de le remettre tel qu'il était (la ligne de
//   commande copie ses fichiers avant l'import et les remet).
// - Rien n'est laissé sans être dit : chaque ligne que le dossier ne garde pas, ou garde
//   changée, est au rapport avec son numéro, son texte d'origine et la raison.
#pragma once
#include <memory>
#include <string_view>

#include "rqbase/gedcom/arbre.h"
#include "rqbase/gedcom/lecteur_lignes.h"
#include "rqbase/gedcom/rapport.h"

namespace rqbase {

class TGestFichier;
class TProgression;

// Un fichier lu et vérifié, prêt à être importé : ses lignes, son arbre, et le rapport de
// sa lecture (codage, lignes illisibles), que l'import complète.
struct TGedcomLu {
  TLignesGedcom Lignes;
  TRapportImport Rapport;
  std::unique_ptr<TArbreGedcom> Arbre;
  long NbPersonnes = 0;  // enregistrements INDI
};

// Lit le fichier sans toucher à aucun dossier : ERqBase s'il est illisible. Ainsi un dossier
// à créer ne l'est qu'une fois le fichier jugé lisible.
std::unique_ptr<TGedcomLu> LitGedcom(std::string_view octets);
// Importe un fichier lu ; le rapport rendu est celui de la lecture complété. Une fois les
// personnes écrites, les lignes et l'arbre de `lu` sont rendus (vides) : l'index des noms se
// refait sans eux en mémoire. Sur une erreur avant ce point, `lu` reste entier.
TRapportImport ImporteGedcom(TGestFichier& gest, TGedcomLu& lu, TProgression* progression = nullptr);
// Les deux à la suite.
TRapportImport ImporteGedcom(TGestFichier& gest, std::string_view octets, TProgression* progression = nullptr);

}  // namespace rqbase
