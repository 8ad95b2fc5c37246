// TFicNotes : le fichier des notes d'un dossier (.not, type 15), en blocs chaînés de 512 octets.
//
// Le bloc k est à l'octet k × 512 (sur 64 bits). Un bloc (TNote::TEnreg) tient 508 octets
// de texte terminé par un zéro (507 caractères au plus) puis un mot signé de 32 bits,
// `Suivant`. Le bloc 0 est l'en-tête du fichier : son `Suivant` porte le nombre de blocs
// donnés (NbBlocs), tout le reste est à zéro. Un bloc n'est jamais rendu : ReturnNewNum
// ne fait que compter vers le haut. Ce que tiennent les autres blocs (en-têtes de notes,
// chaînes de texte) : voir note.h et docs/formats.md.
//
// Le fichier suit le motif des fichiers d'enregistrements (storage/fic_enreg.h) : un bloc
// s'écrit en entier ou l'échec est signalé, il s'écrit avant l'en-tête qui le compte, et
// le compte lu est borné par la taille du fichier. Écrire au-delà de NbBlocs lève
// ERqBase("FicNote : Erreur Enreg") sans rien écrire.
//
// Un fichier vide (dossier d'avant les notes, ouvert en écriture) reçoit son en-tête au
// lieu d'être lu : l'ouverture d'un tel dossier n'est pas une erreur.
#pragma once
#include <string>
#include <vector>

#include "rqbase/storage/fic_enreg.h"

namespace rqbase {

// Une ligne d'une liste de notes (à la place d'une ligne de liste d'écran) : un champ,
// peut-être caché, dont le libellé est le titre de la note.
struct TLigneNote {
  bool EstChamp = true;
  bool Cache = false;
  std::string Titre;
};

class TFicNotes : public TFicEnregBase {
 public:
  static constexpr size_t TailleBloc = 512;
  // Le plus long chemin qu'une note suit : un peu plus de 15 Mo de texte.
  static constexpr long BlocsMaxParNote = 30000;
  static constexpr const char* TexteErreurEnreg = "FicNote : Erreur Enreg";

  TFicNotes(TContexteDossier* gest, bool creation);

  // L'en-tête : NbBlocs dans le `Suivant` du bloc 0, le reste à zéro.
  void EcritureEntete() override;
  void LectureEntete() override;

  long NbBlocs() const { return Nombre; }
  // Le numéro ne dépasse pas NbBlocs (pas de borne basse).
  bool NoNoteValide(long no) const { return no <= Nombre; }
  // Le bloc est sur le disque : 1..compte de l'en-tête écrit (un bloc donné mais pas
  // encore écrit n'y est pas).
  bool BlocEcrit(long no) const { return no >= 1 && no <= NombreSurDisque; }

  // Styles 150 (« Note avec mise en forme ») : le texte tel qu'il est gardé ; 151 (« Note
  // sans mise en forme ») : RecupNoteTxt ; 152 (« Existence d'une note ») : le texte du
  // booléen Existe(titre). noNote 0 : texte vide, ou pour 152 le texte du booléen faux.
  // Avec `nettoie`, la partie cachée des lieux est ôtée (ClearDeletedPlace).
  std::string ChargeNote(long noNote, const std::string& titre, int style, bool nettoie);
  // Vrai si aucune note des lignes (toutes pour `ligne` -1, sinon celle-là) ne donne de
  // texte brut ; les lignes cachées ou qui ne sont pas des champs sont sautées.
  bool NoteVide(long noNote, int ligne, const std::vector<TLigneNote>& liste);
  // La préférence booléenne "Aff notes dans resume" ; faux si absente.
  static bool RecupAffResumeNote();
  // Le texte sans sa partie cachée (voir fic_notes.cpp).
  static std::string ClearDeletedPlace(const std::string& texte);

  // Le texte d'un booléen dans un style d'affichage. Par défaut : style 80, ressource 1908
  // pour vrai et rien pour faux ; styles 81 et 82, ressource style × 2 + (0 vrai, 1 faux)
  // + 1742 ; tout autre style, rien. La couche des champs y installe le sien.
  using TChargeBoolean = std::string (*)(bool valeur, int style);
  static void FixeChargeBoolean(TChargeBoolean fonction);
  static std::string ChargeBoolean(bool valeur, int style);

  // Lit `nombre` blocs consécutifs depuis `premier` dans `tampon` (nombre × 512 octets,
  // mis à zéro d'abord) ; rend les octets venus (0 : échec, drapeau d'erreur levé).
  int64_t LitBlocs(long premier, long nombre, void* tampon);
  // Écrit `nombre` blocs consécutifs en une fois, puis l'en-tête s'ils vont au-delà du
  // compte écrit. Au-delà de NbBlocs : ERqBase("FicNote : Erreur Enreg"), rien d'écrit.
  // Dossier en lecture seule ou en erreur : rien, false. Rend true quand tout est écrit.
  bool EcritBlocs(long premier, long nombre, const void* tampon);
};

}  // namespace rqbase
