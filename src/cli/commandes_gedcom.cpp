// Les commandes GEDCOM : importer un fichier dans un dossier, exporter un dossier.
//
//   rqbase importer FICHIER.ged DOSSIER [--creer]
//     lit le fichier (jamais changé), puis écrit ses personnes, familles et faits dans le
//     dossier (créé d'abord avec --creer) ; barre de progression sur un terminal, puis le
//     rapport : les comptes, et chaque ligne non importée ou changée avec sa raison. --json :
//     {"personnes", "familles", "evenements", "lieux", "sources", "medias", "notes",
//     "avertissements": [{"ligne", "texte", "raison"}]}.
//     Un fichier illisible sort avec le code 1 et un message, avant qu'aucun dossier soit
//     créé ou touché ; un import qui échoue dans un dossier créé par --creer l'efface, et
//     dans un dossier qui existait, il est défait : le dossier revient tel qu'il était.
//   rqbase exporter DOSSIER FICHIER.ged [--vivants exclure|anonymiser] [--remplacer]
//     écrit le dossier en GEDCOM 5.5.1 UTF-8 ; un fichier existant n'est remplacé qu'avec
//     --remplacer, et d'un seul coup. --json : {"personnes", "familles", "evenements",
//     "sans_balise", "vivants"}.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "commandes.h"
#include "ouverture.h"
#include "validateurs.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/gedcom/export_gedcom.h"
#include "rqbase/gedcom/import_gedcom.h"
#include "rqbase/platform/chemins.h"
#include "rqbase/platform/remplacement.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/util/erreur.h"
#include "rqbase/util/fichiers.h"

namespace fs = std::filesystem;

namespace rqcli {

namespace {

using rqbase::ERqBase;
using rqbase::TGestFichier;

struct TOptionsGedcom {
  std::string Fichier, Dossier, Vivants;
  bool Creer = false, Remplacer = false;
};

// Le fichier GEDCOM entier, lu sans jamais l'ouvrir en écriture. Un tube ou un dossier
// bloquerait ou n'aurait pas de fin : seul un fichier ordinaire est lu.
std::string LitFichier(const std::string& chemin) {
  std::error_code ec;
  const fs::path os = rqbase::CheminOs(chemin);
  if (!fs::exists(os, ec)) throw ERqBase("Le fichier \"" + chemin + "\" est introuvable.");
  if (!fs::is_regular_file(os, ec)) throw ERqBase("\"" + chemin + "\" n'est pas un fichier ordinaire : il n'est pas lu.");
  std::ifstream f(os, std::ios::binary);
  if (!f) throw ERqBase("Le fichier \"" + chemin + "\" ne peut pas être lu.");
  std::string octets((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
  if (f.bad()) throw ERqBase("Le fichier \"" + chemin + "\" n'a pas pu être lu jusqu'au bout.");
  return octets;
}

// Le .prs d'un dossier à créer (CHEMIN avec ou sans .rq2, ou son .prs, comme les autres
// commandes le nomment).
std::string PrsACreer(const std::string& nom) {
  fs::path p(rqbase::SupprimeSlashSiNecessaire(nom));
  if (p.extension() == ".prs" || p.extension() == ".PRS") return p.string();
  if (p.extension() != ".rq2") p = p.string() + ".rq2";
  return (p / (p.stem().string() + ".prs")).string();
}

// La copie des fichiers d'un dossier, faite avant qu'un import s'y ajoute. Un import qui
// échoue au milieu (disque plein...) a déjà écrit des personnes dont les liens visent des
// personnes à venir, des faits dans la base, des lieux : plutôt que de défaire chaque fichier
// à sa façon, chaque fichier reprend sa copie, et le dossier revient à l'octet près tel qu'il
// était. La copie va à côté du dossier (même disque : les remises sont des renommages) ; une
// copie laissée par un import interrompu n'est jamais écrasée. Seuls les fichiers ordinaires
// du dossier sont copiés : l'import n'écrit ni dans ses sous-dossiers ni au bout d'un lien.
class TCopieDeSecours {
 public:
  explicit TCopieDeSecours(const fs::path& dossier) : Dossier(dossier), Copie(dossier.string() + ".~import") {
    std::error_code ec;
    if (fs::exists(fs::symlink_status(Copie, ec)))
      throw ERqBase("\"" + rqbase::CheminInterne(Copie) +
                    "\" existe déjà (copie laissée par un import interrompu ?) : l'import n'est pas lancé, rien n'a changé.");
    if (!fs::create_directory(Copie, ec) || ec)
      throw ERqBase("La copie de sécurité du dossier n'a pas pu être créée : l'import n'est pas lancé, rien n'a changé.");
    Cree = true;
    for (const fs::directory_entry& e : fs::directory_iterator(Dossier, ec)) {
      const fs::file_status st = e.symlink_status(ec);
      if (ec || !fs::is_regular_file(st)) continue;
      const fs::path cible = Copie / e.path().filename();
      const auto taille = fs::file_size(e.path(), ec);
      if (ec || !fs::copy_file(e.path(), cible, ec) || ec || fs::file_size(cible, ec) != taille || ec)
        throw ERqBase("La copie de sécurité du dossier n'a pas pu être écrite en entier (disque plein ?) : "
                      "l'import n'est pas lancé, rien n'a changé.");
      Noms.push_back(e.path().filename());
    }
    if (ec) throw ERqBase("Le dossier n'a pas pu être lu pour sa copie de sécurité : l'import n'est pas lancé, rien n'a changé.");
  }
  ~TCopieDeSecours() {
    std::error_code ec;
    if (Cree) fs::remove_all(Copie, ec);
  }
  TCopieDeSecours(const TCopieDeSecours&) = delete;
  TCopieDeSecours& operator=(const TCopieDeSecours&) = delete;

  // Le dossier tel qu'il était, une fois fermé : les fichiers nés pendant l'import (journal de
  // la base...) sont ôtés, les autres reprennent leur copie. false si une remise a échoué : la
  // copie reste alors en place pour l'utilisateur.
  bool Restaure() {
    std::error_code ec;
    std::vector<fs::path> nes;
    for (const fs::directory_entry& e : fs::directory_iterator(Dossier, ec)) {
      const fs::file_status st = e.symlink_status(ec);
      if (!ec && fs::is_regular_file(st) &&
          std::find(Noms.begin(), Noms.end(), e.path().filename()) == Noms.end())
        nes.push_back(e.path());
    }
    bool ok = !ec;
    for (const fs::path& p : nes) ok = fs::remove(p, ec) && ok;
    for (const fs::path& nom : Noms) {
      fs::rename(Copie / nom, Dossier / nom, ec);
      ok = ok && !ec;
    }
    if (!ok) Cree = false;  // rien n'est effacé de ce qui peut encore servir
    return ok;
  }
  std::string NomCopie() const { return rqbase::CheminInterne(Copie); }

 private:
  fs::path Dossier, Copie;
  std::vector<fs::path> Noms;
  bool Cree = false;
};

json Rapport(const rqbase::TRapportImport& r) {
  json avert = json::array();
  for (const auto& a : r.Avertissements)
    avert.push_back({{"ligne", a.Ligne}, {"texte", Texte(a.Texte)}, {"raison", Texte(a.Raison)}});
  return {{"personnes", r.Personnes}, {"familles", r.Familles}, {"evenements", r.Evenements},
          {"lieux", r.Lieux},         {"sources", r.Sources},   {"medias", r.Medias},
          {"notes", r.Notes},         {"avertissements", avert}};
}

void Importer(TContexteCli& ctx, const TOptionsGedcom& o) {
  const std::string fichier = Arg(o.Fichier);
  // Le fichier d'abord : illisible, rien n'est créé ni ouvert.
  std::string octets = LitFichier(fichier);
  auto lu = rqbase::LitGedcom(octets);
  // Les lignes ont leur propre tampon : les octets du fichier ne servent plus.
  std::string().swap(octets);

  std::unique_ptr<TGestFichier> gest;
  std::unique_ptr<TCopieDeSecours> copie;
  if (o.Creer) {
    const std::string prs = PrsACreer(Arg(o.Dossier));
    // Un dossier qui existe est refusé ici, sans la question que la création poserait.
    std::error_code ec;
    if (fs::exists(fs::symlink_status(rqbase::CheminOs(prs), ec)))
      throw ERqBase("Le dossier \"" + Arg(o.Dossier) + "\" existe déjà : rien n'a été changé (sans --creer, l'import s'y ajoute).");
    gest = std::make_unique<TGestFichier>(prs, true, false, false, false, 0, rqbase::mcFormulaire, false);
    if (gest->EnErreur()) {
      const bool existe = gest->DerniereReponse() != 0;
      const std::string message = gest->MessageErreur();
      gest.reset();
      if (existe) throw ERqBase("Le dossier \"" + Arg(o.Dossier) + "\" existe déjà : rien n'a été changé (sans --creer, l'import s'y ajoute).");
      if (!message.empty()) throw ERqBase(message);
      throw ERqBase("Le dossier \"" + Arg(o.Dossier) + "\" n'a pas pu être créé.");
    }
  } else {
    // La copie se fait avant l'ouverture, qui elle-même peut écrire ; un dossier que
    // l'ouverture refuse (introuvable, verrouillé par un autre programme) n'est pas remis.
    const std::string prs = CheminPrs(Arg(o.Dossier));
    if (rqbase::FichierExiste(prs) && !DossierEnLectureSeule(prs))
      copie = std::make_unique<TCopieDeSecours>(rqbase::CheminOs(fs::path(prs).parent_path().string()));
    gest = OuvrePourEcrire(o.Dossier, true);
  }
  rqbase::TRapportImport r;
  try {
    TProgressionTerminal progression;
    r = rqbase::ImporteGedcom(*gest, *lu, &progression);
    VerifieEcriture(*gest, "l'import est incomplet.");
  } catch (const std::exception& e) {
    // Un dossier que cette commande a créé ne reste pas à moitié rempli.
    if (o.Creer) {
      gest->SupprimeDossier();
      throw;
    }
    if (!copie) throw;
    // Dans un dossier qui existait, l'import est défait en entier, fermé d'abord.
    gest.reset();
    std::string cause = e.what();
    cause = cause.substr(0, cause.find('\n'));
    if (!copie->Restaure())
      throw ERqBase("L'import a échoué (" + cause + ") et le dossier n'a pas pu être remis en état : sa copie d'avant l'import est dans \"" +
                    copie->NomCopie() + "\".");
    throw ERqBase("L'import a échoué (" + cause + ") : il a été défait, le dossier est tel qu'avant l'import.");
  }
  if (copie) {
    // Le dossier est fermé avant que la copie s'efface : tout est sur le disque.
    gest.reset();
    copie.reset();
  }
  if (ctx.Json) return EcritJson(Rapport(r));
  Ecrit("Import de " + fichier + " (" + r.Codage + (r.Version.empty() ? "" : ", GEDCOM " + r.Version) + ")");
  for (const std::string& l : rqbase::TexteRapport(r)) Ecrit(l);
}

void Exporter(TContexteCli& ctx, const TOptionsGedcom& o) {
  rqbase::TVivantsExport vivants = rqbase::TVivantsExport::Tous;
  if (o.Vivants == "exclure") vivants = rqbase::TVivantsExport::Exclure;
  if (o.Vivants == "anonymiser") vivants = rqbase::TVivantsExport::Anonymiser;
  const std::string cible = Arg(o.Fichier);
  std::error_code ec;
  const bool existe = fs::exists(fs::symlink_status(rqbase::CheminOs(cible), ec));
  if (existe && !o.Remplacer)
    throw ERqBase("Le fichier \"" + cible + "\" existe déjà : rien n'a été écrit (--remplacer pour le remplacer).");
  auto gest = Ouvre(o.Dossier, true);
  rqbase::TRapportExport r;
  std::string texte;
  {
    TProgressionTerminal progression;
    texte = rqbase::ExporteGedcom(*gest, vivants, r, &progression);
  }
  if (!rqbase::RemplaceFichier(cible, texte))
    throw ERqBase("Le fichier \"" + cible + "\" n'a pas pu être écrit (ou n'est pas un fichier ordinaire) : rien n'a changé.");
  if (ctx.Json)
    return EcritJson({{"personnes", r.Personnes}, {"familles", r.Familles}, {"evenements", r.Evenements},
                      {"sans_balise", r.SansBalise}, {"vivants", r.Vivants}});
  Ecrit("Export vers " + cible + " : " + std::to_string(r.Personnes) + " personnes, " + std::to_string(r.Familles) +
        " familles, " + std::to_string(r.Evenements) + " faits.");
  if (r.SansBalise) Ecrit(std::to_string(r.SansBalise) + " faits sans balise GEDCOM dans le catalogue : non écrits.");
  if (r.Vivants)
    Ecrit(std::to_string(r.Vivants) + (vivants == rqbase::TVivantsExport::Exclure ? " personnes vivantes exclues."
                                                                                    : " personnes vivantes anonymisées."));
}

}  // namespace

void AjouteCommandesGedcom(CLI::App& app, TContexteCli& ctx) {
  static TOptionsGedcom o;
  auto* importer = app.add_subcommand("importer", U("Importe un fichier GEDCOM dans un dossier"));
  importer->add_option("FICHIER", o.Fichier, U("Fichier GEDCOM (5.5, 5.5.1 ou 7.0)"))->required();
  importer->add_option("DOSSIER", o.Dossier, U("Dossier .rq2 qui reçoit l'import"))->required();
  importer->add_flag("--creer", o.Creer, U("Crée le dossier (il ne doit pas exister)"));
  importer->callback([&ctx] { Importer(ctx, o); });

  auto* exporter = app.add_subcommand("exporter", U("Exporte un dossier en GEDCOM 5.5.1 (UTF-8)"));
  exporter->add_option("DOSSIER", o.Dossier, U("Dossier .rq2 ou fichier .prs"))->required();
  exporter->add_option("FICHIER", o.Fichier, U("Fichier GEDCOM à écrire"))->required();
  exporter->add_option("--vivants", o.Vivants, U("exclure ou anonymiser les personnes vivantes"))
      ->check(UneValeurParmi({"exclure", "anonymiser"}));
  exporter->add_flag("--remplacer", o.Remplacer, U("Remplace le fichier s'il existe"));
  exporter->callback([&ctx] { Exporter(ctx, o); });
}

}  // namespace rqcli
