#include "rqbase/index/param_recherche.h"

#include "rqbase/index/recherche_index.h"
#include "rqbase/platform/dossiers_systeme.h"
#include "rqbase/platform/preferences.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/majuscules.h"

namespace rqbase {

namespace {

constexpr const char* kSection = "Personne_Modif";

bool Interrupteur(const std::string& fichier, const char* cle) {
  const std::string v = UpperANSIChaineAS(Trim(LitIni(fichier, kSection, cle)), 2);
  return v == "1" || v == "TRUE" || v == "OUI";
}

}  // namespace

std::string FichierParamRecherche() { return DossierDonneesUtilisateur() + "searchpers.ini"; }

void TGestEltIndex::GetParamSearchPersEdit(TSearchPersEdit* param) {
  if (!param) return;
  const std::string fichier = FichierParamRecherche();
  *param = TSearchPersEdit();
  param->Activate = Interrupteur(fichier, "Activate");
  param->PersAdd = Interrupteur(fichier, "Pers_Add");
  param->PersEdit = Interrupteur(fichier, "Pers_Edit");
  param->Periode = LitIniEntier(fichier, kSection, "Periode", 0);
  param->LastSearch = LitIni(fichier, kSection, "Last_search");
}

}  // namespace rqbase
