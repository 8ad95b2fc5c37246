// Harnais libFuzzer : un fichier de chaînes partagées (.lie) fait des octets donnés s'ouvre,
// se relit en mémoire et accepte une valeur neuve puis une suppression, sans planter ni
// boucler. Les mêmes octets, pris pour chacun des anciens fichiers des événements d'un
// dossier de 2009 (.evn, .evx, .chs, .src, .ill), se lisent par les façades, parcours et
// recherches compris. Tout se passe dans un disque en mémoire.
#include <cstdint>
#include <string>

#include "rqbase/places/gestduplicat.h"
#include "rqbase/platform/fichier_memoire.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/storage/fic_evens.h"
#include "rqbase/util/erreur.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  using namespace rqbase;
  static TDisqueMemoire disque;
  static TDisqueMemoire::TInstallation installation(disque);
  disque.Vide();
  disque.Pose("/f/F.rq2/F.lie", TDisqueMemoire::TOctets(donnees, donnees + taille));
  TContexteDossier contexte("/f/F.rq2/F.prs");
  try {
    TFicDupli lie(&contexte, tfLie, false);
    const long n = lie.NbFiches();
    for (long no = -1; no <= n + 1 && no < 200; ++no) {
      TFicheDupli fiche(&lie, no, true);
      std::string ville, region, pays;
      fiche.Elt.GetVilleRegionPays(ville, region, pays);
      (void)lie.RangDeNumero(no);
    }
    if (n < 200) {
      TEltDupChn e(0, "Neuve", "1", "Région", "Pays");
      int position = 0;
      lie.Cherche(&e, true, &position);
      if (!lie.ClassementSansSuppr().empty()) lie.SupprimeElt(0);
      lie.Cherche(&e, true, &position);
    }
  } catch (const ERqBase&) {
    // « Err index FicDupli » : un numéro de la table hors du compte, texte voulu.
  }
  // Les anciens fichiers ne lèvent rien : tout ce qui ne se lit pas se lit vierge.
  for (const char* ext : {"evn", "evx", "chs", "src", "ill"})
    disque.Pose(std::string("/f/F.rq2/F.") + ext, TDisqueMemoire::TOctets(donnees, donnees + taille));
  TContexteDossier ancien("/f/F.rq2/F.prs", true);  // un contexte nu est de 2009
  TFicExtEvens ext(&ancien);
  TFicEvens evens(&ancien, nullptr);
  evens.Ext = &ext;
  TFicChpsSimple chps(&ancien, nullptr);
  TFicSources sources(&ancien, nullptr);
  TFicIllustrations ills(&ancien, nullptr);
  TEvenement ev;
  TChpsSimple chp;
  for (long no = -1; no <= evens.GetNbEnreg() + 1 && no < 100; ++no) {
    ev.Enreg.No = no;
    evens.LectureEven(&ev);
    chp.LectureAncien(&chps, no);
    TSource s;
    s.LectureAncien(&sources, no);
    TIllustration i;
    i.No = no;
    ills.LectureIllustration(&i);
  }
  evens.PreProcessSearch("NAISSANCE", 1);
  while (evens.GetEvenParcours(&ev)) {
  }
  chps.PreProcessSearch();
  for (int k = 0; k < 100 && chps.GetChpsSimpleParcours(&chp, 1); ++k) {
  }
  (void)evens.FindEvenNaissOfPerson(1);
  (void)chps.FindChpsSimpleOfPerson(1, "PROFESSION");
  return 0;
}
