// La commande catalogue : les champs d'un dossier (liste ou un champ en entier), et
// le décodage d'une ligne de catalogue lue sur l'entrée standard.
#include <filesystem>
#include <iostream>
#include <iterator>

#include "commandes.h"
#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/platform/chemins.h"
#include "rqbase/fields/fichier_dch.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/util/erreur.h"
#include "rqbase/util/fichiers.h"

namespace fs = std::filesystem;

namespace rqcli {

namespace {

using rqbase::ERqBase;
using rqbase::TChpCs;

json Textes(const std::vector<std::string>& v) {
  json l = json::array();
  for (const auto& s : v) l.push_back(Texte(s));
  return l;
}

json JsonChamp(const TChpCs& c) {
  json tailles = json::array();
  for (short t : c.TailleMorceaux) tailles.push_back(t);
  json dicos = json::array();
  for (long n : c.IndexFicDupli) dicos.push_back(n);
  return json{
      {"libelle_interne", Texte(c.LibelleInterne)},
      {"libelle_ecran", Texte(c.LibelleEcran)},
      {"type", c.Type},
      {"type_texte", Texte(c.RetTypeString())},
      {"description", Texte(c.Description)},
      {"nb_morceaux", c.NbMorceaux},
      {"tailles", tailles},
      {"noms", Textes(c.NomMorceaux)},
      {"tag_gedcom", Texte(c.TagGedCom)},
      {"sous_tags", Textes(c.SousTagGedCom)},
      {"dictionnaires", dicos},
      {"repete", c.Repete},
      {"liaison", Texte(std::string(1, c.Liaison))},
      {"symbole", Texte(c.Symbole)},
      {"masculin", Texte(c.LibelleMasculin)},
      {"feminin", Texte(c.LibelleFeminin)},
      {"apres_deces", c.ApresDeces},
      {"oui_non", c.OuiNon},
      {"val_defaut", c.ValDefaut},
      {"equivalents", Texte(c.Equivalents)},
      {"utilise_equivalent", c.UtiliseEquivalent},
      {"expressions", Textes(c.Expressions.Lignes())},
      {"avec_resume", c.AvecResume},
      {"entier1", c.Entier1},
      {"entier2", c.Entier2},
      {"chemin_modele", Texte(c.CheminModele)},
      {"ligne", Texte(c.Code())},
  };
}

std::string OuiNon(bool b) { return b ? "oui" : "non"; }

std::string Liste(const std::vector<std::string>& v) {
  std::string r;
  for (const auto& s : v) r += (r.empty() ? "" : ", ") + s;
  return r;
}

void EcritChamp(const TChpCs& c) {
  std::vector<std::string> tailles, dicos;
  for (short t : c.TailleMorceaux) tailles.push_back(std::to_string(t));
  for (long n : c.IndexFicDupli) dicos.push_back(std::to_string(n));
  Ecrit("Libellé interne     : " + c.LibelleInterne);
  Ecrit("Libellé d'écran     : " + c.LibelleEcran);
  Ecrit("Type                : " + std::to_string(c.Type) + " (" + c.RetTypeString() + ")");
  Ecrit("Description         : " + c.Description);
  Ecrit("Morceaux            : " + std::to_string(c.NbMorceaux));
  Ecrit("Largeurs            : " + Liste(tailles));
  Ecrit("Noms                : " + Liste(c.NomMorceaux));
  Ecrit("Balise GEDCOM       : " + c.TagGedCom);
  Ecrit("Sous-balises        : " + Liste(c.SousTagGedCom));
  Ecrit("Dictionnaires       : " + Liste(dicos));
  Ecrit("Répété              : " + OuiNon(c.Repete));
  Ecrit("Liaison             : " + std::string(1, c.Liaison));
  Ecrit("Symbole             : " + c.Symbole);
  Ecrit("Masculin / féminin  : " + c.LibelleMasculin + " / " + c.LibelleFeminin);
  Ecrit("Après décès         : " + OuiNon(c.ApresDeces));
  Ecrit("Oui/Non             : " + OuiNon(c.OuiNon));
  Ecrit("Valeur par défaut   : " + std::to_string(c.ValDefaut));
  Ecrit("Équivalents         : " + c.Equivalents + (c.UtiliseEquivalent ? " (utilisés)" : ""));
  Ecrit("Avec résumé         : " + OuiNon(c.AvecResume));
  Ecrit("Entiers             : " + std::to_string(c.Entier1) + ", " + std::to_string(c.Entier2));
  Ecrit("Chemin du modèle    : " + c.CheminModele);
  for (int i = 0; i < c.Expressions.Count(); ++i) Ecrit("Phrase " + std::to_string(i + 1) + "            : " + c.Expressions[i]);
  Ecrit("Ligne               : " + c.Code());
}

// Le fichier catalogue d'un dossier nommé par son dossier système (avec ou sans .rq2)
// ou par son .prs.
std::string CheminDch(const std::string& nom) {
  fs::path p(rqbase::SupprimeSlashSiNecessaire(nom));
  if (p.extension() == ".prs" || p.extension() == ".PRS") return p.replace_extension(".dch").string();
  std::error_code ec;
  if (!fs::is_directory(rqbase::CheminOs(p.string()), ec) && fs::is_directory(rqbase::CheminOs(p.string() + ".rq2"), ec))
    p = p.string() + ".rq2";
  return (p / (p.stem().string() + ".dch")).string();
}

// Le catalogue tel que l'ouverture du dossier le présentera (mise à niveau comprise),
// lu sans rien écrire.
std::unique_ptr<rqbase::TDefChpsCs> LitCatalogue(const std::string& nom) {
  const std::string dch = CheminDch(nom);
  if (!rqbase::FichierExiste(dch))
    throw ERqBase("Le dossier \"" + nom + "\" n'a pas de catalogue des champs (" + dch + ").");
  rqbase::TContenuDch contenu;
  if (!rqbase::LitFichierDch(dch, contenu)) throw ERqBase("Le catalogue \"" + dch + "\" ne peut pas être lu.");
  return std::make_unique<rqbase::TDefChpsCs>(nullptr, contenu, true);
}

void Catalogue(TContexteCli& ctx, const std::string& dossier, const std::string& champ) {
  auto cat = LitCatalogue(dossier);
  if (!champ.empty()) {
    const TChpCs* c = cat->RechercheChampsInternePtr(champ);
    if (!c) throw ERqBase("Le champ \"" + champ + "\" n'existe pas dans ce catalogue.");
    if (ctx.Json)
      EcritJson(JsonChamp(*c));
    else
      EcritChamp(*c);
    return;
  }
  if (ctx.Json) {
    json l = json::array();
    for (const auto& c : cat->Champs)
      l.push_back(json{{"libelle_interne", Texte(c->LibelleInterne)},
                       {"libelle_ecran", Texte(c->LibelleEcran)},
                       {"type_texte", Texte(c->RetTypeString())},
                       {"tag_gedcom", Texte(c->TagGedCom)},
                       {"liaison", Texte(std::string(1, c->Liaison))},
                       {"repete", c->Repete}});
    EcritJson(l);
    return;
  }
  for (const auto& c : cat->Champs) {
    std::string ligne = c->LibelleInterne;
    ligne.resize(std::max<size_t>(ligne.size() + 1, 21), ' ');
    std::string ecran = c->LibelleEcran;
    ecran.resize(std::max<size_t>(ecran.size() + 1, 28), ' ');
    std::string type = c->RetTypeString();
    type.resize(std::max<size_t>(type.size() + 1, 31), ' ');
    std::string tag = c->TagGedCom;
    tag.resize(std::max<size_t>(tag.size() + 1, 21), ' ');
    Ecrit(ligne + ecran + type + tag + std::string(1, c->Liaison) + " " + (c->Repete ? "O" : "N"));
  }
}

void Decoder(TContexteCli& ctx) {
  std::string entree((std::istreambuf_iterator<char>(std::cin)), std::istreambuf_iterator<char>());
  // Une seule ligne : ce qui suit le premier saut de ligne est ignoré.
  const auto fin = entree.find_first_of("\r\n");
  if (fin != std::string::npos) entree.resize(fin);
  // L'UTF-8 bien formé qui n'est pas du simple ASCII est converti ; sinon Windows-1252.
  const std::string ligne = rqbase::EstUtf8Valide(entree) ? rqbase::DepuisUtf8(entree) : entree;
  TChpCs c(false);
  c.Decode(ligne);
  if (ctx.Json)
    EcritJson(JsonChamp(c));
  else
    EcritChamp(c);
}

}  // namespace

void AjouteCommandesCatalogue(CLI::App& app, TContexteCli& ctx) {
  auto* cmd = app.add_subcommand("catalogue", U("Le catalogue des champs d'un dossier"));
  auto dossier = std::make_shared<std::string>();
  auto champ = std::make_shared<std::string>();
  cmd->add_option("DOSSIER", *dossier, U("Dossier .rq2 ou fichier .prs"));
  cmd->add_option("--champ", *champ, U("Montre en entier le champ de ce libellé interne"));
  auto* decoder = cmd->add_subcommand(
      "decoder", U("Décode une ligne de catalogue lue sur l'entrée standard (Windows-1252 ou UTF-8)"));
  decoder->callback([&ctx] { Decoder(ctx); });
  cmd->callback([cmd, decoder, dossier, champ, &ctx] {
    if (decoder->parsed()) return;
    if (dossier->empty()) throw ERqBase("Indiquez un DOSSIER, ou la commande decoder.");
    Catalogue(ctx, Arg(*dossier), Arg(*champ));
  });
}

}  // namespace rqcli
