// TFicXml : le fichier .xin lu et réécrit entier avec pugixml.
#include "rqbase/storage/fic_xml.h"

#include <pugixml.hpp>

#include "rqbase/platform/chemins.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/storage/gest_fic.h"

namespace rqbase {

namespace {
constexpr const char* kRacine = "XmlForFiliora";
}

struct TFicXml::TDonnees {
  pugi::xml_document Document;
};

TFicXml::TFicXml(TGestFichier* gest, bool creation)
    : Gest(gest), CheminFichier(gest->FabriqueNomFichier(tfXin)), Donnees(std::make_unique<TDonnees>()) {
  // Un fichier illisible se lit comme vide : la prochaine écriture le refait.
  if (!creation) Donnees->Document.load_file(CheminOs(CheminFichier).c_str());
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
  if (Gest->IsReadOnly()) return false;
  return Donnees->Document.save_file(CheminOs(CheminFichier).c_str(), "  ", pugi::format_default, pugi::encoding_utf8);
}

}  // namespace rqbase
