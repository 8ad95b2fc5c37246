#include "rqbase/index/noms_equivalents.h"

#include <algorithm>

#include "rqbase/index/bo_chn.h"
#include "rqbase/platform/fichier.h"
#include "rqbase/platform/remplacement.h"
#include "rqbase/util/chaines.h"

namespace rqbase {

TTabNomEquiv::TTabNomEquiv(const std::string& fichierNoms, const std::string& fichierPrenoms) {
  Table(TGenre::Noms).Fichier = fichierNoms;
  Table(TGenre::Prenoms).Fichier = fichierPrenoms;
  Lit(TGenre::Noms);
  Lit(TGenre::Prenoms);
}

std::string TTabNomEquiv::Cle(const std::string& nom, TGenre genre) {
  return genre == TGenre::Noms ? CleNomIndex(nom) : ClePrenomCritere(nom);
}

std::vector<std::string> TTabNomEquiv::Normalise(const std::vector<std::string>& noms, TGenre genre) {
  std::vector<std::string> groupe;
  for (const std::string& n : noms) {
    std::string forme = Cle(n, genre);
    if (!forme.empty() && std::find(groupe.begin(), groupe.end(), forme) == groupe.end())
      groupe.push_back(std::move(forme));
  }
  if (groupe.size() < 2) groupe.clear();
  return groupe;
}

void TTabNomEquiv::Range(TGenre genre, std::vector<std::string> groupe) {
  TTable& t = Table(genre);
  const size_t k = t.Groupes.size();
  for (const std::string& g : groupe) t.ParGraphie[g].push_back(k);
  t.Groupes.push_back(std::move(groupe));
}

void TTabNomEquiv::Lit(TGenre genre) {
  TTable& t = Table(genre);
  if (t.Fichier.empty()) return;
  auto f = TFichierBrut::Ouvre(t.Fichier, TFichierBrut::TAcces::Lecture, TFichierBrut::TDisposition::Ouvre, false);
  if (!f) return;  // absent (ou pas un fichier ordinaire) : aucune équivalence
  const int64_t taille = f->Taille();
  if (taille <= 0) return;
  std::string texte(std::min<size_t>(size_t(taille), kTailleMax), '\0');
  const int64_t lus = f->LitA(0, texte.data(), texte.size());
  if (lus < 0) {
    Avertissements.push_back(t.Fichier + " : illisible");
    return;
  }
  texte.resize(size_t(lus));
  if (size_t(taille) > kTailleMax) Avertissements.push_back(t.Fichier + " : lu jusqu'à 16 Mo seulement");
  size_t noLigne = 0;
  for (std::string_view ligne : DecoupeElts(texte, '\n')) {
    ++noLigne;
    if (!ligne.empty() && ligne.back() == '\r') ligne.remove_suffix(1);
    const std::string propre = Trim(ligne);
    if (propre.empty() || propre[0] == '#') continue;
    const std::string ou = t.Fichier + ", ligne " + std::to_string(noLigne) + " : ";
    if (propre.size() > kLigneMax) {
      Avertissements.push_back(ou + "ligne trop longue");
      continue;
    }
    std::vector<std::string> noms;
    for (std::string_view n : DecoupeElts(propre, ';')) noms.emplace_back(n);
    std::vector<std::string> groupe = Normalise(noms, genre);
    if (groupe.empty()) {
      Avertissements.push_back(ou + "moins de deux graphies");
      continue;
    }
    Range(genre, std::move(groupe));
  }
}

std::vector<std::string> TTabNomEquiv::GetNomEquiv(const std::string& nom, TGenre genre) const {
  const std::string forme = Cle(nom, genre);
  std::vector<std::string> r{forme};
  const TTable& t = Table(genre);
  auto it = t.ParGraphie.find(forme);
  if (it == t.ParGraphie.end()) return r;
  for (size_t k : it->second)
    for (const std::string& g : t.Groupes[k])
      if (std::find(r.begin(), r.end(), g) == r.end()) r.push_back(g);
  return r;
}

bool TTabNomEquiv::AjouteGroupe(const std::vector<std::string>& noms, TGenre genre) {
  std::vector<std::string> groupe = Normalise(noms, genre);
  if (groupe.empty()) return false;
  Range(genre, std::move(groupe));
  return true;
}

bool TTabNomEquiv::Sauvegarde(TGenre genre) const {
  const TTable& t = Table(genre);
  if (t.Fichier.empty()) return false;
  std::string texte;
  for (const auto& groupe : t.Groupes) {
    for (size_t i = 0; i < groupe.size(); ++i) texte += (i ? ";" : "") + groupe[i];
    texte += "\r\n";
  }
  return RemplaceFichier(t.Fichier, texte);
}

}  // namespace rqbase
