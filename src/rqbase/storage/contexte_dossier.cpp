// TContexteDossier : noms de fichiers, ouverture avec replis, état partagé du dossier.
#include "rqbase/storage/contexte_dossier.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "rqbase/platform/attributs.h"
#include "rqbase/platform/chemins.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/fil.h"
#include "rqbase/util/erreur.h"
#include "rqbase/util/fichiers.h"

namespace fs = std::filesystem;

namespace rqbase {

TContexteDossier::TContexteDossier(const std::string& chemin, bool lectureSeule) : LectureSeule(lectureSeule) {
  const fs::path p(chemin);
  Lecteur = chemin.empty() ? 0 : chemin[0];
  Dossier = AjouteSlashSiNecessaire(p.parent_path().string());
  Nom = p.stem().string();
}

std::string TContexteDossier::FabriqueNomFichier(int type, int numero, bool flag) const {
  return FabriqueNomFichierPour(type, Dossier, Nom, numero, flag);
}

std::string TContexteDossier::FabriqueNomFichierPour(int type, const std::string& dossier, const std::string& nom,
                                                     int numero, bool flag) const {
  static const char* const kExtensions[] = {
      "prs", "qua", "qux", "par", "pax", "lie", "lix", "ill", "exp", "psu", "src", "chs", "evx", "evn", "sst", "not",
      "",    "ein", "prx", "rtf", "dch", "neq", "preq", nullptr, "gnp", "dbf", "cpt", "xin", "adb", "adb", "inp", "syn",
      "eveneq", "brd"};
  std::string base = dossier + nom;
  std::string ext = (type >= 0 && type <= tfBrd && type != tfDico) ? kExtensions[type] : "";
  switch (type) {
    case tfDico: {
      char tampon[16];
      std::snprintf(tampon, sizeof tampon, "%c%i", flag ? 'd' : 'r', numero);
      ext = tampon;
      break;
    }
    case tfGnp:
    case tfInp: base = dossier + "Notices/" + nom; break;
    case tfLienIdDbf:
    case tfLienIdCpt: base = dossier + "lienidpers"; break;
    case tfUndo: base = dossier + "undo"; break;
    default: break;
  }
  std::string chemin = base + "." + ext;
  if (chemin.size() >= kCheminMax) throw ERqBase("Nom de fichier trop long !");
  return chemin;
}

bool TContexteDossier::IsExt2009() const {
  const std::string ext = fs::path(SupprimeSlashSiNecessaire(Dossier)).extension().string();
  return MajusculesCp1252(ext) != ".RQ2";
}

std::unique_ptr<TFichierBrut> TContexteDossier::OuvertureFichier(const std::string& chemin, bool creation) {
  using A = TFichierBrut::TAcces;
  using D = TFichierBrut::TDisposition;
  const D disposition = creation ? D::CreeOuRemplace : D::OuvreOuCree;
  auto essai = [&](bool lecture, bool immediate) -> std::unique_ptr<TFichierBrut> {
    // Un fichier sans droit d'écriture vaut l'attribut lecture seule de l'autre système.
    if (!lecture && SansDroitEcriture(chemin)) return nullptr;
    return TFichierBrut::Ouvre(chemin, lecture ? A::Lecture : A::LectureEcriture, lecture ? D::Ouvre : disposition,
                               immediate);
  };
  auto f = essai(LectureSeule, true);
  if (f) return f;
  // Un lien symbolique ou un fichier spécial n'est pas un fichier en lecture seule : aucun
  // repli ne l'ouvrira, et le dossier ne change pas d'état pour lui.
  const int erreur = TFichierBrut::DerniereErreur();
  if (erreur == ELOOP || erreur == EINVAL || erreur == EISDIR) return nullptr;
  bool lecture = LectureSeule;
  if (!LectureSeule && !PutFilesInReadWrite(Dossier)) {
    LectureSeule = true;
    lecture = true;
  }
  f = essai(lecture, false);
  if (f) return f;
  if (!LectureSeule) {
    LectureSeule = true;
    f = essai(true, false);
  }
  return f;
}

void TContexteDossier::NoteEcriture() {
  DerniereEcriture = Maintenant();
  DateModification = DerniereEcriture;
  IdEcrivain = IdThreadCourant();
}

void TContexteDossier::NoteLecture() {
  DerniereLecture = Maintenant();
  IdLecteur = IdThreadCourant();
}

bool TContexteDossier::CheckIfIsWriting(uint32_t threadId) const {
  return (Maintenant() - DerniereEcriture) * 86400000.0 < 1001.0 && IdEcrivain != 0 && IdEcrivain != threadId;
}

bool TContexteDossier::CheckIfIsReading(uint32_t threadId) const {
  return (Maintenant() - DerniereLecture) * 86400000.0 < 1001.0 && IdLecteur != 0 && IdLecteur != threadId;
}

bool PutFilesInReadWrite(const std::string& dossier) {
  std::error_code ec;
  if (!fs::is_directory(CheminOs(dossier), ec)) return false;
  bool tous = true;
  for (const auto& e : fs::directory_iterator(CheminOs(dossier), ec)) {
    if (!e.is_regular_file() || e.is_symlink()) continue;
    const std::string chemin = CheminInterne(e.path());
    if (!SansDroitEcriture(chemin)) continue;
    if (!AjouteDroitEcriture(chemin) || SansDroitEcriture(chemin)) tous = false;
  }
  return tous;
}

}  // namespace rqbase
