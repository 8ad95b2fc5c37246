// TPerson : les tampons de date (création, dernière modification, dernière notification)
// et l'identifiant d'échange d'une personne, tous tenus dans des champs simples.
#include <cstdio>
#include <random>

#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/person/voisins_personne.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/util/date_heure.h"

namespace rqbase {

namespace {

// Le texte du champ "ORIGINE_DONNEE" d'un dossier créé ici : ses données ont été saisies
// à la main, et non importées d'un autre logiciel.
constexpr const char* kOrigineDonnee = "Saisie directe";

// La ligne du catalogue qui définit "ID_PERS" quand le dossier ne l'a pas encore :
// un texte (CPA) de 28 caractères, caché de la saisie.
constexpr const char* kDefinitionIdPers = "ID_PERS\tIdentifiant Filiora\tCPA\t\t1\t28\t\t\t\t\tN\tP";

// Longueur d'un identifiant d'échange : celui du dossier suivi de 8 chiffres hexadécimaux.
constexpr size_t kLgIdPers = 28;

// Le tampon "jj/mm/aaaa hh:nn:ss" ; les troisième et sixième caractères sont des '/', quoi
// qu'en dise le texte donné.
std::string Tampon(const std::string& date) {
  std::string t = date.empty() ? DateHeureEnTexte(Maintenant()) : date;
  if (t.size() > 2) t[2] = '/';
  if (t.size() > 5) t[5] = '/';
  return t;
}

// Pose `valeur` dans le premier champ simple de ce libellé, ou l'ajoute.
void PoseChamp(TPerson& p, const char* libelle, const std::string& valeur) {
  const int rg = p.GetRgChpsSimple(libelle);
  TChpsSimple::TEnreg c;
  if (rg > 0 && p.ChpsSimpleNo(rg, &c)) {
    c.SetDonnee(valeur);
    p.MajChpsSimpleNo(rg, &c);
    return;
  }
  c.SetLibelle(libelle);
  c.SetDonnee(valeur);
  c.NoPersA = p.No();
  p.AjoutChpsSimple(&c, 0);
}

// La source des nombres tirés pour les identifiants : amorcée une fois par processus.
std::mt19937& Hasard() {
  static std::mt19937 generateur{std::random_device{}()};
  return generateur;
}

bool IdentifiantBienForme(const std::string& id) {
  return id.size() == kLgIdPers && id.find(' ') == std::string::npos && id.find(',') == std::string::npos;
}

}  // namespace

void TPerson::MajDateJourDDMF_DCF(bool creationSeule, const std::string& date) {
  const std::string tampon = Tampon(date);
  // Les deux listes chargées : l'enregistrement n'écrit les champs que si les deux le sont.
  ChargeListes();
  if (GetRgChpsSimple("DCF") == 0) PoseChamp(*this, "DCF", tampon);
  if (creationSeule) return;
  PoseChamp(*this, "DDMF", tampon);
  if (OnMajDateModif) OnMajDateModif(*this);
}

void TPerson::MajDateJourDDNOTIF(const TDateTime* date) {
  ChargeListes();
  PoseChamp(*this, "DDNOTIF", Tampon(DateHeureEnTexte(date ? *date : Maintenant())));
}

std::string TPerson::RetourneIdPers(bool creer) {
  TVoisinsPersonne* voisins = Voisins();
  TContexteDossier* gest = Gest();
  if (voisins && gest && gest->PeutEcrire())
    if (TDefChpsCs* catalogue = voisins->GetDefChpsCs(); catalogue && !catalogue->IsChampExist("ID_PERS")) {
      catalogue->CreatChpCs(kDefinitionIdPers);
      catalogue->Sauvegarde();
    }

  std::string id;
  if (const int rg = GetRgChpsSimple("ID_PERS"); rg > 0) {
    TChpsSimple::TEnreg c;
    ChpsSimpleNo(rg, &c);
    id = c.Donnee;
    if (!IdentifiantBienForme(id)) {
      SupprChpsSimpleNo(rg, false);
      id.clear();
    }
  }
  if (id.empty() && creer && voisins && Numero > 0) {
    ChargeListes();
    id = voisins->GetIdGenea() + GenereIdPersUnique();
    PoseChamp(*this, "ID_PERS", id);
    Enregistrement(-3, nullptr, false, false, true, true);
  }
  return id;
}

std::string TPerson::GenereIdPersUnique() {
  TVoisinsPersonne* voisins = Voisins();
  const std::string prefixe = voisins ? voisins->GetIdGenea() : std::string();
  std::uniform_int_distribution<int> tirage(0, 99998);
  std::string id;
  // Voulu : un tirage déjà pris est prolongé d'un autre, pas remplacé. La valeur testée est
  // l'identifiant entier, tel qu'il sera enregistré.
  do {
    char hex[9];
    std::snprintf(hex, sizeof hex, "%08X", static_cast<unsigned>(tirage(Hasard())));
    id += hex;
  } while (voisins && voisins->IsIDPersExists(prefixe + id));
  return id;
}

bool TPerson::VerifIdPersOk(const std::string& id) {
  TVoisinsPersonne* voisins = Voisins();
  if (id.empty() || !voisins) return false;
  const std::string& idGenea = voisins->GetIdGenea();
  return !idGenea.empty() && id.find(idGenea) != std::string::npos;
}

void TPerson::AddOrigineDataChps() {
  ChargeListes();
  if (IsExistChpsSimple("ORIGINE_DONNEE")) return;
  TChpsSimple::TEnreg c;
  c.SetLibelle("ORIGINE_DONNEE");
  c.SetDonnee(kOrigineDonnee);
  c.NoPersA = Numero;
  AjoutChpsSimple(&c, 0);
}

}  // namespace rqbase
