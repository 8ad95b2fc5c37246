// TFicXml : le fichier .xin lu et réécrit entier avec pugixml, par la couche des fichiers.
#include "rqbase/storage/fic_xml.h"

#include <pugixml.hpp>
#include <sstream>
#include <vector>

#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/fichier.h"
#include "rqbase/platform/remplacement.h"
#include "rqbase/storage/contexte_dossier.h"

namespace rqbase {

namespace {
constexpr const char* kRacine = "XmlForFiliora";
// Au-delà, ce n'est pas le petit magasin de clés d'un dossier : on ne le charge pas.
constexpr int64_t kTailleMax = 1 << 20;
}  // namespace

struct TFicXml::TDonnees {
  pugi::xml_document Document;
};

TFicXml::TFicXml(TContexteDossier* gest, bool creation)
    : Gest(gest), CheminFichier(gest->FabriqueNomFichier(tfXin)), Donnees(std::make_unique<TDonnees>()) {
  // Lu par la couche des fichiers : un lien symbolique ou un tube n'est pas lu. Un fichier
  // illisible se lit comme vide ; la prochaine écriture le remplace (voir EcritureValeur).
  if (!creation) {
    if (auto f = TFichierBrut::Ouvre(CheminFichier, TFichierBrut::TAcces::Lecture, TFichierBrut::TDisposition::Ouvre)) {
      const int64_t taille = f->Taille();
      if (taille > 0 && taille <= kTailleMax) {
        std::vector<char> octets(static_cast<size_t>(taille));
        if (f->LitA(0, octets.data(), octets.size()) == taille)
          Donnees->Document.load_buffer(octets.data(), octets.size());
      }
    }
  }
  if (!Donnees->Document.child(kRacine)) {
    Donnees->Document.reset();
    Donnees->Document.append_child(kRacine);
  }
}

TFicXml::~TFicXml() = default;

std::string TFicXml::LectureValeur(const std::string& section, const std::string& cle) const {
  const pugi::xml_node noeud =
      Donnees->Document.child(kRacine).child(VersUtf8(section).c_str()).child(VersUtf8(cle).c_str());
  return DepuisUtf8(noeud.text().get());
}

bool TFicXml::EcritureValeur(const std::string& section, const std::string& cle, const std::string& valeur) {
  pugi::xml_node racine = Donnees->Document.child(kRacine);
  const std::string s = VersUtf8(section), c = VersUtf8(cle);
  pugi::xml_node noeudSection = racine.child(s.c_str());
  if (!noeudSection) noeudSection = racine.append_child(s.c_str());
  pugi::xml_node noeudCle = noeudSection.child(c.c_str());
  if (!noeudCle) noeudCle = noeudSection.append_child(c.c_str());
  noeudCle.text().set(VersUtf8(valeur).c_str());
  if (!Gest->PeutEcrire()) return false;
  std::ostringstream flux;
  Donnees->Document.save(flux, "  ", pugi::format_default, pugi::encoding_utf8);
  // Le fichier entier est remplacé d'un coup : une panne laisse l'ancien ou le nouveau.
  if (RemplaceFichier(CheminFichier, flux.str())) return true;
  Gest->SignaleEcritureRatee();
  return false;
}

}  // namespace rqbase
