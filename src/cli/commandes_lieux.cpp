// Les commandes des chaînes partagées : lieux (.lie), qualités (.qua), liens de parenté (.par).
// Quatre verbes chacune : ajouter (Cherche avec création), liste, chercher (sans création),
// supprimer (SupprimeElt : la valeur est marquée, jamais retirée).
#include <optional>

#include "commandes.h"
#include "ouverture.h"
#include "rqbase/places/gestduplicat.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/util/erreur.h"

namespace rqcli {

namespace {

using rqbase::ERqBase;
using rqbase::TEltDupChn;
using rqbase::TFicDupli;
using rqbase::TGestFichier;

enum class TGenre { Lieu, Qualite, Parente };

struct TOptionsValeur {
  std::string Chemin, Commune, Code, Region, Pays, Valeur;
  bool Supprimes = false;
  std::optional<long> Rang, Numero;
};

TFicDupli* FichierDe(const TGestFichier& gest, TGenre genre) {
  TFicDupli* f = genre == TGenre::Lieu ? gest.FicLie() : genre == TGenre::Qualite ? gest.FicQua() : gest.FicPar();
  if (!f || !f->Fichier()) throw ERqBase("Le fichier des valeurs partagées de ce dossier ne peut pas être ouvert.");
  return f;
}

// L'élément cherché, d'après les options ; les textes sont vérifiés avant d'ouvrir le dossier.
TEltDupChn Element(const TOptionsValeur& o, TGenre genre) {
  if (genre != TGenre::Lieu) {
    const std::string valeur = ArgTexte(o.Valeur, "la valeur");
    if (valeur.empty()) throw ERqBase("La valeur est vide : rien n'a été enregistré.");
    return TEltDupChn(0, valeur.c_str());
  }
  const std::string commune = ArgTexte(o.Commune, "la commune"), code = ArgTexte(o.Code, "le code"),
                    region = ArgTexte(o.Region, "la région"), pays = ArgTexte(o.Pays, "le pays");
  if (commune.empty()) throw ERqBase("La commune est vide : rien n'a été enregistré.");
  if (code.size() > 10) throw ERqBase("Le code dépasse 10 caractères : rien n'a été enregistré.");
  if (pays.size() > 50) throw ERqBase("Le pays dépasse 50 caractères : rien n'a été enregistré.");
  return TEltDupChn(0, commune.c_str(), code.c_str(), region.c_str(), pays.c_str());
}

json Decrit(const TEltDupChn& e, long rang, TGenre genre) {
  json j = {{"numero", static_cast<long>(e.NoFiche)}, {"rang", rang}};
  if (genre == TGenre::Lieu) {
    std::string commune, region, pays;
    e.GetVilleRegionPays(commune, region, pays);
    j["commune"] = Texte(commune);
    j["code"] = Texte(e.Code);
    j["region"] = Texte(region);
    j["pays"] = Texte(pays);
  } else {
    j["valeur"] = Texte(e.Ville);
  }
  j["supprime"] = e.IsFicheSupprimee();
  return j;
}

std::string Ligne(const json& j, TGenre genre) {
  std::string texte = std::to_string(j["numero"].get<long>()) + "\t" + std::to_string(j["rang"].get<long>()) + "\t";
  auto champ = [&](const char* cle) { return rqbase::DepuisUtf8(j[cle].get<std::string>()); };
  if (genre == TGenre::Lieu)
    texte += champ("commune") + "\t" + champ("code") + "\t" + champ("region") + "\t" + champ("pays");
  else
    texte += champ("valeur");
  return texte + (j["supprime"].get<bool>() ? "\t(supprimée)" : "");
}

void Ajouter(TContexteCli& ctx, const TOptionsValeur& o, TGenre genre) {
  TEltDupChn e = Element(o, genre);
  auto gest = Ouvre(o.Chemin, false);
  int rang = -1;
  const long numero = FichierDe(*gest, genre)->Cherche(&e, true, &rang);
  VerifieEcriture(*gest, "la valeur n'a pas été enregistrée.");
  if (ctx.Json) return EcritJson({{"numero", numero}, {"rang", rang}});
  Ecrit("Valeur " + std::to_string(numero) + " (rang " + std::to_string(rang) + ").");
}

void Chercher(TContexteCli& ctx, const TOptionsValeur& o, TGenre genre) {
  TEltDupChn e = Element(o, genre);
  auto gest = Ouvre(o.Chemin, true);
  const long numero = FichierDe(*gest, genre)->Cherche(&e, false);
  if (ctx.Json) return EcritJson({{"numero", numero}});
  Ecrit(numero ? std::to_string(numero) : "Absente.");
}

void Liste(TContexteCli& ctx, const TOptionsValeur& o, TGenre genre) {
  auto gest = Ouvre(o.Chemin, true);
  TFicDupli* f = FichierDe(*gest, genre);
  json liste = json::array();
  TEltDupChn e;
  for (long p = 0; p < f->Table()->GetNbElt(); ++p) {
    f->Table()->Lit(p, e);
    if (e.IsFicheSupprimee() && !o.Supprimes) continue;
    liste.push_back(Decrit(e, e.IsFicheSupprimee() ? -1 : f->RangDeNumero(e.NoFiche), genre));
  }
  if (ctx.Json) return EcritJson(liste);
  for (const auto& j : liste) Ecrit(Ligne(j, genre));
}

void Supprimer(TContexteCli& ctx, const TOptionsValeur& o, TGenre genre) {
  if (o.Rang.has_value() == o.Numero.has_value()) throw ERqBase("Donner --rang ou --numero, l'un des deux.");
  auto gest = Ouvre(o.Chemin, false);
  TFicDupli* f = FichierDe(*gest, genre);
  const long rang = o.Rang ? *o.Rang : f->RangDeNumero(*o.Numero);
  if (rang < 0 || static_cast<size_t>(rang) >= f->ClassementSansSuppr().size())
    throw ERqBase(o.Rang ? "Aucune valeur à ce rang : rien n'a été supprimé."
                         : "Aucune valeur en usage sous ce numéro : rien n'a été supprimé.");
  TEltDupChn e;
  f->Table()->Lit(f->ClassementSansSuppr()[static_cast<size_t>(rang)], e);
  f->SupprimeElt(rang);
  VerifieEcriture(*gest, "la valeur n'a pas été supprimée.");
  if (ctx.Json) return EcritJson({{"numero", static_cast<long>(e.NoFiche)}, {"supprime", true}});
  Ecrit("Valeur " + std::to_string(e.NoFiche) + " supprimée.");
}

void AjouteGenre(CLI::App& app, TContexteCli& ctx, const char* nom, const char* aide, TGenre genre) {
  // Les valeurs des options vivent aussi longtemps que l'application : une par genre.
  static TOptionsValeur parGenre[3];
  TOptionsValeur* o = &parGenre[static_cast<int>(genre)];
  auto* commande = app.add_subcommand(nom, U(aide));
  commande->require_subcommand(1);
  auto options = [&](CLI::App* c) {
    c->add_option("DOSSIER", o->Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
    if (genre == TGenre::Lieu) {
      c->add_option("--commune", o->Commune, U("Commune"))->required();
      c->add_option("--code", o->Code, U("Code postal ou de département"));
      c->add_option("--region", o->Region, U("Région ou département"));
      c->add_option("--pays", o->Pays, U("Pays"));
    } else {
      c->add_option("--valeur", o->Valeur, U("La valeur"))->required();
    }
  };
  auto* ajouter = commande->add_subcommand("ajouter", U("Ajoute la valeur (ou la retrouve) et donne son numéro"));
  options(ajouter);
  ajouter->callback([&ctx, o, genre] { Ajouter(ctx, *o, genre); });
  auto* chercher = commande->add_subcommand("chercher", U("Donne le numéro de la valeur, 0 si elle est absente"));
  options(chercher);
  chercher->callback([&ctx, o, genre] { Chercher(ctx, *o, genre); });
  auto* liste = commande->add_subcommand("liste", U("Liste les valeurs dans l'ordre de la table"));
  liste->add_option("DOSSIER", o->Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  liste->add_flag("--supprimes", o->Supprimes, U("Montre aussi les valeurs supprimées"));
  liste->callback([&ctx, o, genre] { Liste(ctx, *o, genre); });
  auto* supprimer = commande->add_subcommand("supprimer", U("Marque une valeur supprimée (son numéro reste lisible)"));
  supprimer->add_option("DOSSIER", o->Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  supprimer->add_option("--rang", o->Rang, U("Rang parmi les valeurs non supprimées"));
  supprimer->add_option("--numero", o->Numero, U("Numéro de la valeur"));
  supprimer->callback([&ctx, o, genre] { Supprimer(ctx, *o, genre); });
}

}  // namespace

void AjouteCommandesLieux(CLI::App& app, TContexteCli& ctx) {
  AjouteGenre(app, ctx, "lieu", "Les lieux partagés du dossier (.lie)", TGenre::Lieu);
  AjouteGenre(app, ctx, "qualite", "Les qualités partagées des personnes citées (.qua)", TGenre::Qualite);
  AjouteGenre(app, ctx, "parente", "Les liens de parenté partagés des personnes citées (.par)", TGenre::Parente);
}

}  // namespace rqcli
