// L'export d'un dossier en GEDCOM 5.5.1, UTF-8, d'après les balises du catalogue.
//
// Ce qu'un appelant peut tenir pour sûr :
// - Chaque événement et champ simple s'écrit sous la balise que le catalogue donne à son
//   champ, ses morceaux sous leurs sous-balises ; un champ sans balise est compté à part et
//   n'est pas écrit. Les faits de couple vont à la famille (FAM) du couple.
// - Les personnes supprimées ne s'écrivent pas, ni les liens vers elles.
// - Relu par ImporteGedcom, le fichier redonne les mêmes personnes, liens, faits, dates,
//   lieux, sources, médias, personnes citées et notes.
// - Vivants : une personne présumée vivante par l'estimation des dates de vie
//   (TPerson::EstPresumeVivante : ni décès noté, ni fin de vie estimée avant aujourd'hui ;
//   sans aucune date, vivante). `Exclure` ne l'écrit pas (ni ses liens) ; `Anonymiser` écrit « Vivant » à la place
//   de son nom et de ses prénoms, sans ses faits ni ses notes, ses liens gardés.
// - Le texte est produit en mémoire ; l'appelant l'écrit (voir RemplaceFichier).
#pragma once
#include <string>

namespace rqbase {

class TGestFichier;
class TProgression;

enum class TVivantsExport { Tous, Exclure, Anonymiser };

struct TRapportExport {
  long Personnes = 0;
  long Familles = 0;
  long Evenements = 0;
  long SansBalise = 0;  // faits dont le champ n'a pas de balise GEDCOM
  long Vivants = 0;     // personnes exclues ou anonymisées
};

// Le fichier entier, en UTF-8.
std::string ExporteGedcom(TGestFichier& gest, TVivantsExport vivants, TRapportExport& rapport,
                          TProgression* progression = nullptr);

}  // namespace rqbase
