// TGestFichier : copie, renommage et suppression d'un dossier entier.
//
// Chaque opération vérifie tout avant de toucher au disque, puis se fait entière ou défait
// ce qu'elle a commencé : un échec laisse le dossier tel qu'il était, et le compte rendu
// dit en français ce qui s'est passé. Seuls les fichiers et dossiers qui appartiennent au
// dossier (ses fichiers nommés, ses dictionnaires, Notices/, Images/) sont déplacés ou
// supprimés ; ce que l'utilisateur a posé d'autre dans le dossier est laissé et signalé.

#include <algorithm>
#include <cerrno>
#include <cctype>
#include <filesystem>
#include <set>

#include "rqbase/dossier/gest_fic.h"
#include "rqbase/platform/chemins.h"
#include "rqbase/platform/fil.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/remplacement.h"
#include "rqbase/util/erreur.h"
#include "rqbase/util/fichiers.h"

namespace fs = std::filesystem;

namespace rqbase {

namespace {

// Les types que le renommage et la copie emportent, dans leur ordre.
constexpr int kTypesRenommes[] = {0, 1, 2, 3, 4, 5, 6, 8, 9, 14, 15, 19, 17, 20, 21, 22, 24, 30, 27, 28};
constexpr int kTypesCopies[] = {18, 0, 1, 2, 3, 4, 5, 6, 8, 9, 14, 15, 19, 17, 20, 21, 22, 24, 30, 28, 29};

bool EstLienOuAbsent(const std::string& chemin) {
  std::error_code ec;
  const auto st = fs::symlink_status(CheminOs(chemin), ec);
  return ec || !fs::exists(st) || fs::is_symlink(st);
}

bool FichierOrdinaire(const std::string& chemin) {
  std::error_code ec;
  return fs::is_regular_file(fs::symlink_status(CheminOs(chemin), ec));
}

// Un dictionnaire : "<nom>.r<chiffres>" ou "<nom>.d<chiffres>".
bool EstDictionnaire(const std::string& fichier, const std::string& nom) {
  if (fichier.size() < nom.size() + 3 || fichier.compare(0, nom.size() + 1, nom + ".") != 0) return false;
  const std::string ext = fichier.substr(nom.size() + 1);
  if (ext[0] != 'r' && ext[0] != 'd') return false;
  return std::all_of(ext.begin() + 1, ext.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)); });
}

// Un nom de dossier que l'utilisateur peut donner : ni vide, ni chemin, ni caractère de contrôle.
bool NomValide(const std::string& nom) {
  if (nom.empty() || nom == "." || nom == ".." || nom[0] == '.') return false;
  return std::none_of(nom.begin(), nom.end(), [](char c) {
    const auto u = static_cast<unsigned char>(c);
    return u < 0x20 || u == 0x7F || c == '/' || c == '\\';
  });
}

std::string Relatif(const std::string& chemin, const std::string& dossier) { return chemin.substr(dossier.size()); }

}  // namespace

// --- Ce qui appartient au dossier ---

std::vector<std::string> TGestFichier::MembresPresents() const {
  std::set<std::string> propres;
  for (int type = tfPersons; type <= tfBrd; ++type)
    if (type != tfNomSeul && type != tfDico) propres.insert(Relatif(FabriqueNomFichier(type), Dossier));
  // Les compagnons de la base et ce qu'elle a mis de côté portent son nom.
  for (const char* suffixe : {".adb-wal", ".adb-shm", ".adb-journal", ".~adb"}) propres.insert(Nom + suffixe);
  std::vector<std::string> presents, autres;
  std::error_code ec;
  for (const auto& e : fs::directory_iterator(CheminOs(Dossier), ec)) {
    const std::string fichier = CheminInterne(e.path().filename());
    const bool misDeCote = fichier.rfind(Nom + "_v4", 0) == 0 || fichier.rfind(Nom + ".~adb", 0) == 0;
    if (propres.count(fichier) || EstDictionnaire(fichier, Nom) || misDeCote || fichier == "Images" ||
        fichier == "undo.adb-wal" || fichier == "undo.adb-shm")
      presents.push_back(fichier);
    else
      autres.push_back(fichier);
  }
  // Un second nom d'un fichier du dossier (laissé par un renommage interrompu) est au dossier.
  const size_t nPropres = presents.size();
  for (const auto& autre : autres)
    for (size_t i = 0; i < nPropres; ++i)
      if (MemeFichier(Dossier + autre, Dossier + presents[i])) {
        presents.push_back(autre);
        break;
      }
  // Dans Notices/, les notices du dossier (gnp, inp) et les fichiers np*.
  for (const auto& e : fs::directory_iterator(CheminOs(Dossier + "Notices"), ec)) {
    const std::string fichier = CheminInterne(e.path().filename());
    const bool np = fichier.size() >= 2 && std::tolower(static_cast<unsigned char>(fichier[0])) == 'n' &&
                    std::tolower(static_cast<unsigned char>(fichier[1])) == 'p';
    if (propres.count("Notices/" + fichier) || np) presents.push_back("Notices/" + fichier);
  }
  return presents;
}

// --- Suppression ---

TCompteRendu TGestFichier::SupprimeDossier() {
  TCompteRendu r;
  const std::string dossier = SupprimeSlashSiNecessaire(Dossier);
  const std::string prs = FabriqueNomFichier(tfPersons);
  // Seul un vrai dossier se supprime : `<nom>.rq2` qui tient `<nom>.prs`, sans lien.
  if (IsExt2009() || fs::path(CheminOs(dossier)).stem() != CheminOs(Nom).filename() || !FichierOrdinaire(prs) ||
      EstLienOuAbsent(dossier)) {
    r.Message = "\"" + dossier + "\" n'est pas un dossier généalogique (un dossier <nom>.rq2 qui tient <nom>.prs) : rien n'a été supprimé.";
    return r;
  }
  FermerFichiers();
  std::vector<std::string> membres = MembresPresents();
  // Le fichier des personnes part le premier : dès qu'il n'est plus là, le dossier n'existe
  // plus pour personne, et tout le reste attend dans une corbeille cachée.
  std::stable_partition(membres.begin(), membres.end(), [&](const std::string& m) { return m == Nom + ".prs"; });
  const std::string corbeille = Dossier + ".rqsuppression" + std::to_string(IdProcessus());
  std::error_code ec;
  fs::create_directories(CheminOs(corbeille + "/Notices"), ec);
  if (ec) {
    r.Message = "Le dossier \"" + dossier + "\" n'a pas pu être supprimé (écriture impossible dans le dossier) : rien n'a changé.";
    return r;
  }
  std::vector<std::string> deplaces;
  for (const auto& m : membres) {
    if (!RenommeSansEcraser(Dossier + m, corbeille + "/" + m)) {
      // On remet tout en place, dans l'ordre inverse.
      for (auto it = deplaces.rbegin(); it != deplaces.rend(); ++it) RenommeSansEcraser(corbeille + "/" + *it, Dossier + *it);
      fs::remove_all(CheminOs(corbeille), ec);
      r.Message = "Le dossier \"" + dossier + "\" n'a pas pu être supprimé (" + m + " ne peut être déplacé) : rien n'a changé.";
      return r;
    }
    deplaces.push_back(m);
  }
  SynchroniseDossier(dossier);
  fs::remove_all(CheminOs(corbeille), ec);
  fs::remove(CheminOs(Dossier + "Notices"), ec);  // seulement s'il est vide
  // Ce qui reste n'est pas au dossier : laissé, et dit.
  for (const auto& e : fs::recursive_directory_iterator(CheminOs(dossier), ec))
    if (!e.is_directory()) r.Conserves.push_back(Relatif(CheminInterne(e.path()), Dossier));
  std::sort(r.Conserves.begin(), r.Conserves.end());
  if (r.Conserves.empty()) fs::remove(CheminOs(dossier), ec);
  Verrou.reset();
  r.Reussi = true;
  return r;
}

// --- Renommage ---

bool TGestFichier::RenommeFichier(int type, const std::string& nouveauNom, int n) {
  const std::string ancien = FabriqueNomFichier(type, n);
  if (!FichierOrdinaire(ancien)) return false;
  return RenommeSansEcraser(ancien, FabriqueNomFichierPour(type, Dossier, nouveauNom, n));
}

TCompteRendu TGestFichier::RenommeDossier(const std::string& nouveauNom) {
  TCompteRendu r;
  const std::string ancienDossier = SupprimeSlashSiNecessaire(Dossier);
  if (!NomValide(nouveauNom)) {
    r.Message = "Le nom \"" + nouveauNom + "\" ne peut pas nommer un dossier (vide, chemin ou caractère de contrôle) : rien n'a changé.";
    return r;
  }
  const std::string parent = AjouteSlashSiNecessaire(fs::path(ancienDossier).parent_path().string());
  const std::string nouveauDossier = parent + nouveauNom + ".rq2";
  const std::string nouveauDossierSlash = nouveauDossier + "/";
  if (!EstLienOuAbsent(nouveauDossier) || fs::is_symlink(fs::symlink_status(CheminOs(nouveauDossier)))) {
    r.Message = "Le dossier \"" + nouveauDossier + "\" existe déjà : rien n'a changé.";
    return r;
  }
  // Tous les noms nouveaux d'abord : un chemin trop long est refusé avant tout changement.
  for (int type = tfPersons; type <= tfBrd; ++type) (void)FabriqueNomFichierPour(type, nouveauDossierSlash, nouveauNom);
  FermerFichiers();
  std::vector<std::pair<std::string, std::string>> plan;
  for (int type : kTypesRenommes) plan.emplace_back(FabriqueNomFichier(type), FabriqueNomFichierPour(type, Dossier, nouveauNom));
  std::error_code ec;
  for (const auto& e : fs::directory_iterator(CheminOs(Dossier), ec)) {
    const std::string fichier = CheminInterne(e.path().filename());
    if (EstDictionnaire(fichier, Nom)) plan.emplace_back(Dossier + fichier, Dossier + nouveauNom + fichier.substr(Nom.size()));
  }
  // Chaque fichier reçoit d'abord son nouveau nom en second nom (lien physique), puis le
  // dossier change de nom d'un coup, puis les anciens noms partent. Ainsi, à tout instant, même
  // tué net, le dossier est entier sous un seul nom : l'ancien avant le renommage du dossier,
  // le nouveau après (des anciens noms en trop ne gênent rien). Là où le système ne sait pas
  // lier, les fichiers se renomment un à un avant le dossier, et un échec défait ce qui est fait.
  std::vector<std::pair<std::string, std::string>> faits;
  bool parLiens = true;
  auto defait = [&] {
    for (auto it = faits.rbegin(); it != faits.rend(); ++it) {
      std::error_code ec2;
      if (parLiens && MemeFichier(it->first, it->second))
        fs::remove(CheminOs(it->second), ec2);
      else if (!parLiens)
        RenommeSansEcraser(it->second, it->first);
    }
  };
  for (const auto& [ancien, nouveau] : plan) {
    if (!FichierOrdinaire(ancien) || ancien == nouveau) continue;
    // Un second nom laissé par un renommage interrompu désigne déjà le même fichier.
    if (parLiens && MemeFichier(ancien, nouveau)) continue;
    int erreur = 0;
    bool ok = parLiens ? LieSansEcraser(ancien, nouveau, &erreur) : RenommeSansEcraser(ancien, nouveau, &erreur);
    if (!ok && parLiens && faits.empty() && (erreur == EPERM || erreur == EXDEV || erreur == ENOTSUP || erreur == EMLINK)) {
      parLiens = false;
      ok = RenommeSansEcraser(ancien, nouveau, &erreur);
    }
    if (!ok) {
      defait();
      r.Message = "Le dossier n'a pas pu être renommé (" + Relatif(ancien, Dossier) + " ne peut l'être) : rien n'a changé.";
      return r;
    }
    faits.emplace_back(ancien, nouveau);
  }
  if (parLiens) SynchroniseDossier(ancienDossier);
  if (!RenommeSansEcraser(ancienDossier, nouveauDossier)) {
    defait();
    r.Message = "Le dossier n'a pas pu être renommé en \"" + nouveauDossier + "\" : rien n'a changé.";
    return r;
  }
  if (parLiens) {
    // Le dossier porte son nouveau nom : les anciens noms, seconds noms des mêmes fichiers, partent.
    for (const auto& [ancien, nouveau] : plan) {
      const std::string a = nouveauDossierSlash + Relatif(ancien, Dossier), n = nouveauDossierSlash + Relatif(nouveau, Dossier);
      if (a != n && MemeFichier(a, n)) fs::remove(CheminOs(a), ec);
    }
    SynchroniseDossier(nouveauDossier);
  }
  SynchroniseDossier(parent);
  Dossier = nouveauDossierSlash;
  Nom = nouveauNom;
  r.Reussi = true;
  return r;
}

// --- Copie ---

bool TGestFichier::DupliqueFichier(int type, const std::string& dossierCible, const std::string& nomCible) {
  const std::string source = FabriqueNomFichier(type);
  if (!FichierOrdinaire(source)) return false;
  return CopieFichier(source, FabriqueNomFichierPour(type, AjouteSlashSiNecessaire(dossierCible), nomCible));
}

bool TGestFichier::DupliqueFichierNP(const std::string& dossierCible) {
  std::error_code ec;
  bool ok = true;
  for (const auto& e : fs::directory_iterator(CheminOs(Dossier + "Notices"), ec)) {
    const std::string nom = CheminInterne(e.path().filename());
    if (nom.size() >= 2 && (nom[0] == 'n' || nom[0] == 'N') && (nom[1] == 'p' || nom[1] == 'P') &&
        FichierOrdinaire(Dossier + "Notices/" + nom))
      ok = CopieFichier(Dossier + "Notices/" + nom, AjouteSlashSiNecessaire(dossierCible) + "Notices/" + nom) && ok;
  }
  return ok;
}

TCompteRendu TGestFichier::DupliqueDossier(const std::string& cible) {
  TCompteRendu r;
  fs::path dossierCible(SupprimeSlashSiNecessaire(cible));
  if (!dossierCible.has_extension()) dossierCible = dossierCible.parent_path() / (dossierCible.filename().string() + ".rq2");
  const std::string cibleTexte = dossierCible.string();
  const std::string nomCible = dossierCible.stem().string();
  if (!NomValide(nomCible)) {
    r.Message = "Le nom \"" + nomCible + "\" ne peut pas nommer un dossier : rien n'a été copié.";
    return r;
  }
  if (!EstLienOuAbsent(cibleTexte) || fs::is_symlink(fs::symlink_status(CheminOs(cibleTexte)))) {
    r.Message = "Le dossier \"" + cibleTexte + "\" existe déjà : rien n'a été copié.";
    return r;
  }
  for (int type = tfPersons; type <= tfBrd; ++type) (void)FabriqueNomFichierPour(type, cibleTexte + "/", nomCible);
  // La copie se fait à l'écart puis prend sa place d'un seul renommage.
  const std::string parent = AjouteSlashSiNecessaire(dossierCible.parent_path().string());
  // Un nom court : les chemins de l'écart ne doivent pas dépasser ceux de la cible.
  const std::string ecart = parent + ".rq" + std::to_string(IdProcessus()) + "c/";
  std::error_code ec;
  fs::remove_all(CheminOs(ecart), ec);
  fs::create_directories(CheminOs(ecart + "Notices"), ec);
  auto echec = [&](const std::string& quoi) {
    fs::remove_all(CheminOs(ecart), ec);
    r.Message = "La copie vers \"" + cibleTexte + "\" a échoué (" + quoi + ") : rien n'a été laissé.";
    return r;
  };
  if (ec) return echec("création du dossier impossible");
  // Place de la copie des dictionnaires par le catalogue des champs ; ils sont copiés ici.
  FermerFichiers();
  for (int type : kTypesCopies) {
    if (!FichierOrdinaire(FabriqueNomFichier(type))) continue;
    if (!DupliqueFichier(type, ecart, nomCible)) return echec(Relatif(FabriqueNomFichier(type), Dossier));
  }
  // Un journal de la base que personne n'a encore reporté fait partie de ses données.
  if (FichierOrdinaire(FabriqueNomFichier(tfAdb) + "-wal") &&
      !CopieFichier(FabriqueNomFichier(tfAdb) + "-wal", FabriqueNomFichierPour(tfAdb, ecart, nomCible) + "-wal"))
    return echec(Nom + ".adb-wal");
  for (const auto& e : fs::directory_iterator(CheminOs(Dossier), ec)) {
    const std::string fichier = CheminInterne(e.path().filename());
    if (EstDictionnaire(fichier, Nom) && !CopieFichier(Dossier + fichier, ecart + nomCible + fichier.substr(Nom.size())))
      return echec(fichier);
  }
  // Le .xin n'est pas dans la liste : la copie reçoit son propre identifiant à l'ouverture.
  if (!DupliqueFichierNP(ecart)) return echec("Notices");
  if (CopieImages == 1 && DossierExiste(Dossier + "Images") && !CopyDirectory(Dossier + "Images", ecart + "Images"))
    return echec("Images");
  SynchroniseDossier(ecart);
  if (!RenommeSansEcraser(SupprimeSlashSiNecessaire(ecart), cibleTexte)) return echec("le dossier cible est apparu entre-temps");
  SynchroniseDossier(parent);
  r.Reussi = true;
  return r;
}

}  // namespace rqbase
