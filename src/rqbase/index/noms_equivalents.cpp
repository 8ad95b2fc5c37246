#include "rqbase/index/noms_equivalents.h"

#include <algorithm>
#include <cerrno>

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
  return genre == TGenre::Noms ? CleNomIndex(nom) : ClePrenomIndex(nom);
}

TTabNomEquiv::TGroupe TTabNomEquiv::Normalise(const std::vector<std::string>& noms, TGenre genre) {
  TGroupe groupe;
  for (const std::string& n : noms) {
    std::string graphie = Trim(n);
    std::string cle = Cle(graphie, genre);
    if (cle.empty() || std::find(groupe.Cles.begin(), groupe.Cles.end(), cle) != groupe.Cles.end()) continue;
    groupe.Graphies.push_back(std::move(graphie));
    groupe.Cles.push_back(std::move(cle));
  }
  if (groupe.Cles.size() < 2) groupe = TGroupe();
  return groupe;
}

void TTabNomEquiv::Range(TGenre genre, TGroupe groupe) {
  TTable& t = Table(genre);
  const size_t k = t.Groupes.size();
  for (const std::string& c : groupe.Cles) t.ParCle[c].push_back(k);
  t.Groupes.push_back(std::move(groupe.Graphies));
  t.Cles.push_back(std::move(groupe.Cles));
}

void TTabNomEquiv::Lit(TGenre genre) {
  TTable& t = Table(genre);
  if (t.Fichier.empty()) return;
  auto f = TFichierBrut::Ouvre(t.Fichier, TFichierBrut::TAcces::Lecture, TFichierBrut::TDisposition::Ouvre, false);
  if (!f) {
    // Absent : aucune équivalence, et un ajout créera le fichier. Là mais illisible (droits,
    // lien, pas un fichier ordinaire, erreur du disque) : il n'est jamais remplacé.
    if (TFichierBrut::DerniereErreur() != ENOENT) {
      Avertissements.push_back(t.Fichier + " : illisible, il ne sera pas réécrit");
      t.Tronque = true;
    }
    return;
  }
  const int64_t taille = f->Taille();
  if (taille < 0) {
    Avertissements.push_back(t.Fichier + " : illisible, il ne sera pas réécrit");
    t.Tronque = true;
    return;
  }
  if (taille == 0) return;
  std::string texte(std::min<size_t>(size_t(taille), kTailleMax), '\0');
  const int64_t lus = f->LitA(0, texte.data(), texte.size());
  if (lus < int64_t(texte.size())) {
    // Lu en partie ou pas du tout : ce qui est venu compte, mais le fichier n'est pas réécrit.
    Avertissements.push_back(t.Fichier + " : illisible, il ne sera pas réécrit");
    t.Tronque = true;
    if (lus <= 0) return;
  }
  texte.resize(size_t(lus));
  if (size_t(taille) > kTailleMax) {
    Avertissements.push_back(t.Fichier + " : lu jusqu'à 16 Mo seulement");
    t.Tronque = true;
  }
  t.Texte = texte;
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
    TGroupe groupe = Normalise(noms, genre);
    if (groupe.Cles.empty()) {
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
  auto it = t.ParCle.find(forme);
  if (it == t.ParCle.end()) return r;
  for (size_t k : it->second)
    for (const std::string& c : t.Cles[k])
      if (std::find(r.begin(), r.end(), c) == r.end()) r.push_back(c);
  return r;
}

bool TTabNomEquiv::AjouteGroupe(const std::vector<std::string>& noms, TGenre genre) {
  TGroupe groupe = Normalise(noms, genre);
  if (groupe.Cles.empty()) return false;
  // Écrit, le groupe doit se relire tel quel : une ligne, qui ne commence pas comme un
  // commentaire.
  for (const std::string& g : groupe.Graphies)
    if (g.find_first_of("\r\n;") != std::string::npos) return false;
  if (groupe.Graphies.front()[0] == '#') return false;
  size_t longueur = groupe.Graphies.size() - 1;  // les ';'
  for (const std::string& g : groupe.Graphies) longueur += g.size();
  if (longueur > kLigneMax) return false;  // la ligne écrite serait passée à la relecture
  ++Table(genre).Ajoutes;
  Range(genre, std::move(groupe));
  return true;
}

bool TTabNomEquiv::Sauvegarde(TGenre genre) {
  TTable& t = Table(genre);
  // Un fichier lu en partie ne se réécrit pas : sa fin serait perdue.
  if (t.Fichier.empty() || t.Tronque) return false;
  // Le texte lu reste tel quel (commentaires et lignes passées compris) ; les groupes ajoutés
  // depuis le suivent, une ligne chacun.
  std::string texte = t.Texte;
  if (!texte.empty() && texte.back() != '\n') texte += "\r\n";
  for (size_t k = t.Groupes.size() - t.Ajoutes; k < t.Groupes.size(); ++k) {
    const auto& groupe = t.Groupes[k];
    for (size_t i = 0; i < groupe.size(); ++i) texte += (i ? ";" : "") + groupe[i];
    texte += "\r\n";
  }
  if (!RemplaceFichier(t.Fichier, texte)) return false;
  t.Texte = std::move(texte);
  t.Ajoutes = 0;
  return true;
}

}  // namespace rqbase
