#include "ouverture.h"

#include <filesystem>

#include "contexte.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/platform/attributs.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/platform/chemins.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/util/erreur.h"
#include "rqbase/util/fichiers.h"

namespace fs = std::filesystem;

namespace rqcli {

using rqbase::ERqBase;
using rqbase::TGestFichier;

// Le .prs d'un dossier nommé par son dossier système (avec ou sans .rq2) ou son .prs. Le
// dossier système est pris sous son vrai nom (liens résolus) : c'est son extension qui dit
// s'il est courant ou ancien, pas le nom d'un lien qui y mène.
std::string CheminPrs(const std::string& nom) {
  fs::path p(rqbase::SupprimeSlashSiNecessaire(nom));
  std::error_code ec;
  if (p.extension() != ".prs" && p.extension() != ".PRS") {
    // Un chemin que le système refuse se lit comme absent : le message d'erreur est le nôtre.
    if (!fs::is_directory(rqbase::CheminOs(p.string()), ec) && fs::is_directory(rqbase::CheminOs(p.string() + ".rq2"), ec))
      p = p.string() + ".rq2";
    const fs::path reel = fs::canonical(rqbase::CheminOs(p.string()), ec);
    if (!ec) p = rqbase::CheminInterne(reel);
    return (p / (p.stem().string() + ".prs")).string();
  }
  const fs::path dossier = fs::canonical(rqbase::CheminOs(p.parent_path().empty() ? "." : p.parent_path().string()), ec);
  if (!ec) p = fs::path(rqbase::CheminInterne(dossier)) / p.filename();
  return p.string();
}

// Un dossier généalogique courant : `<nom>.rq2` qui tient `<nom>.prs`. Toute autre cible
// d'une suppression ou d'un renommage est refusée avant d'ouvrir quoi que ce soit.
void VerifieDossierGenealogique(const std::string& nom) {
  const fs::path prs(CheminPrs(Arg(nom)));
  const fs::path dossier = prs.parent_path();
  if (rqbase::MajusculesCp1252(dossier.extension().string()) != ".RQ2" || dossier.stem() != prs.stem() ||
      !rqbase::FichierExiste(prs.string()))
    throw ERqBase("\"" + Arg(nom) + "\" n'est pas un dossier généalogique (un dossier <nom>.rq2 qui tient <nom>.prs) : rien n'a été changé.");
}

// Vrai quand le dossier ne peut être écrit : dossier système ou fichier des personnes sans
// droit d'écriture, ou dossier ancien (qui ne s'ouvre qu'en lecture).
bool DossierEnLectureSeule(const std::string& prs) {
  const fs::path p(prs);
  const std::string dossier = p.parent_path().string();
  const std::string ext = rqbase::MajusculesCp1252(fs::path(dossier).extension().string());
  return ext != ".RQ2" || rqbase::SansDroitEcriture(dossier) || rqbase::SansDroitEcriture(prs);
}

std::unique_ptr<TGestFichier> Ouvre(const std::string& nom, bool lectureSeule) {
  const std::string prs = CheminPrs(Arg(nom));
  if (!rqbase::FichierExiste(prs)) {
    std::error_code ec;
    if (fs::exists(fs::symlink_status(rqbase::CheminOs(prs), ec)))
      throw ERqBase("Le fichier des personnes du dossier \"" + Arg(nom) +
                    "\" n'est pas un fichier ordinaire (lien symbolique, tube...) : le dossier ne peut pas être ouvert.");
    throw ERqBase("Le dossier \"" + Arg(nom) + "\" est introuvable.");
  }
  // Tout se vérifie avant d'ouvrir en écriture : une commande refusée ne change rien.
  if (!lectureSeule && DossierEnLectureSeule(prs))
    throw ERqBase("Le dossier \"" + Arg(nom) + "\" est en lecture seule : rien n'a été changé.");
  // Un dossier sans l'extension .rq2 est ancien : il ne s'ouvre qu'en lecture, et rien n'y
  // est renommé ni mis de côté.
  auto gest = std::make_unique<TGestFichier>(prs, false, false, false, false, 0, rqbase::mcLectureSeule,
                                             lectureSeule || DossierEnLectureSeule(prs));
  if (gest->EnErreur() || !gest->FicPersons()) {
    if (!gest->MessageErreur().empty()) throw ERqBase(gest->MessageErreur());
    throw ERqBase("Le dossier \"" + Arg(nom) + "\" ne peut pas être ouvert.");
  }
  return gest;
}

// Après une écriture : ce qui n'est pas sur le disque ne se dit pas fait.
void VerifieEcriture(const TGestFichier& gest, const std::string& quoi) {
  if (gest.EcritureRatee() || gest.EnErreur())
    throw ERqBase("L'écriture dans le dossier a échoué (disque plein, erreur du disque, ou fichier du dossier qui n'a pas pu "
                  "s'ouvrir) : " + quoi);
}

std::unique_ptr<rqbase::TGestFichier> OuvrePourEcrire(const std::string& nom, bool avecBase) {
  auto gest = Ouvre(nom, false);
  if (!gest->PeutEcrire()) throw rqbase::ERqBase("Le dossier ne peut pas être écrit : rien n'a changé.");
  if (avecBase && (!gest->ModuleBDD() || !gest->ModuleBDD()->EstOuverte()))
    throw rqbase::ERqBase("La base des événements de ce dossier ne peut pas être ouverte.");
  return gest;
}

}  // namespace rqcli
