// La commande date : lecture, conversion, description, écart, ordre et
// décalage des dates généalogiques, date de Pâques.
//
// Une DATE est soit la forme exportée "#<acte><calendrier><date>#" (par exemple
// '# <G01/02/1900#', fourchettes comprises), soit un texte lu comme le lit le
// constructeur de TDateRQ. --calendrier et --acte les fixent explicitement ; le
// texte est alors lu par AnalyseDate dans ce calendrier.
//
// Une commande qui ne peut pas répondre (texte refusé, conversion hors de portée,
// Pâques hors des années calculées, écart incalculable) lève ERqBase : message
// français sur stderr, code de sortie 1, rien sur la sortie standard ; seul
// `analyser` écrit encore en JSON le code du refus qu'on lui demande.
#include <memory>

#include "commandes.h"
#include "rqbase/dates/analysedate.h"
#include "rqbase/dates/bo_jours.h"
#include "rqbase/dates/calendriers.h"
#include "rqbase/dates/conversions.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/ressources.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/erreur.h"

namespace rqcli {
using rqbase::ERqBase;
using rqbase::TDateRQ;

namespace {

struct TOptionsDate {
  std::string texte;
  std::string calendrier;
  std::string acte;
};

char LettreCalendrier(const std::string& c) {
  const std::string m = rqbase::MajusculesCp1252(c);
  if (m.size() != 1 || std::string("GRHA").find(m[0]) == std::string::npos)
    throw ERqBase("Calendrier inconnu : " + c + " (G, R, H ou A).");
  return m[0];
}

std::string TexteRefus(int code) {
  return "Date refusée (code " + std::to_string(code) + ") : " + rqbase::MessageAnalyseDate(code);
}

// Le texte libre lu comme le lit le constructeur de TDateRQ (calendrier R s'il en a
// la forme, G sinon, AnalyseDate souple) ; mais un texte refusé arrête la commande,
// là où le constructeur garderait le texte tapé comme date.
TDateRQ LitTexte(const std::string& texte, char calendrier) {
  std::string normalise = texte;
  if (const int code = rqbase::AnalyseDate(normalise, calendrier, true); code != -1) throw ERqBase(TexteRefus(code));
  return TDateRQ(calendrier, normalise);
}

TDateRQ LitDate(const TOptionsDate& o) {
  const std::string texte = Arg(o.texte);
  TDateRQ date;
  if (!o.calendrier.empty()) {
    date = LitTexte(texte, LettreCalendrier(o.calendrier));
  } else if (texte.size() >= 5 && texte.size() <= 15 && texte.front() == '#' && texte.back() == '#') {
    // Forme exportée, fourchettes (plus courtes) comprises.
    date = TDateRQ(texte[3], texte.substr(4, texte.size() - 5));
    date.SetActe(rqbase::Trim(texte.substr(1, 2)));
  } else {
    date = LitTexte(texte, rqbase::DateFormatRepublicain(texte) ? 'R' : 'G');
  }
  if (!o.acte.empty()) date.SetActe(Arg(o.acte));
  return date;
}

std::string LettreDe(const TDateRQ& d) {
  const char c = d.GetCalendrier();
  return std::string(1, c ? c : 'G');
}

json NombreOuNul(int v) { return v == rqbase::kIncalculable ? json(nullptr) : json(v); }
json NombreOuNul(float v) { return v == rqbase::kIncalculableF ? json(nullptr) : json(v); }

void AjouteOptionsDate(CLI::App* cmd, TOptionsDate& o, const char* nom, bool avecCalendrier) {
  cmd->add_option(nom, o.texte, U("Date : forme exportée '#<acte><calendrier><date>#' ou texte libre"))->required();
  if (avecCalendrier) {
    cmd->add_option("--calendrier,-c", o.calendrier, U("Calendrier du texte : G, R, H ou A"));
    cmd->add_option("--acte,-a", o.acte, U("Acte : <, >, ca, ~, ?, p, c, e, al"));
  }
}

std::string NomCalendrier(char c) {
  switch (c) {
    case 'R': return "républicain";
    case 'H': return "hébraïque";
    case 'A': return "avant Jésus-Christ";
    default: return "grégorien";
  }
}

// Texte d'une date dans un autre calendrier ; une conversion qui ne donne rien (date
// hors de la portée d'un calendrier, invalide dans le sien, borne ouverte d'une
// fourchette vers le républicain) arrête la commande.
std::string Convertit(const TDateRQ& date, char vers) {
  const char depuis = date.GetCalendrier() ? date.GetCalendrier() : 'G';
  if (depuis == vers) return date.GetDate();
  if (depuis == 'A') throw ERqBase("Une date avant Jésus-Christ ne se convertit dans aucun autre calendrier.");
  const std::string gregorien = date.ConvVersGreg();
  std::string texte = gregorien;
  if (vers != 'G' && !gregorien.empty())
    texte = vers == 'R' ? rqbase::ConvGregorienRepublicain(gregorien) : rqbase::ConvGregorienHebraique(gregorien);
  if (texte.empty())
    throw ERqBase("Conversion impossible : la date " + date.GetDate() + " (calendrier " + NomCalendrier(depuis) +
                  ") n'a pas d'équivalent dans le calendrier " + NomCalendrier(vers) + ".");
  return texte;
}

void Analyser(TContexteCli& ctx, const TOptionsDate& o, bool strict) {
  std::string texte = Arg(o.texte);
  const char c = o.calendrier.empty() ? (rqbase::DateFormatRepublicain(texte) ? 'R' : 'G') : LettreCalendrier(o.calendrier);
  const int code = rqbase::AnalyseDate(texte, c, !strict);
  if (ctx.Json) {
    json r = {{"texte", Texte(texte)}, {"calendrier", std::string(1, c)}, {"code", code}};
    if (code != -1) r["message"] = Texte(rqbase::MessageAnalyseDate(code));
    EcritJson(r);
  } else if (code == -1) {
    Ecrit(texte);
  }
  if (code != -1) throw ERqBase(TexteRefus(code));
}

void Info(TContexteCli& ctx, const TOptionsDate& o) {
  const TDateRQ date = LitDate(o);
  std::string abrege, complet;
  short numero = 0;
  const int jourSemaine = date.RetourneJourSemaine(abrege, complet, &numero, false);
  TDateRQ copie(date);
  const int signe = copie.GetSigneZodiaque();
  std::string texteSaison;
  const int saison = date.GetSaison(&texteSaison);
  const std::string gregorien = date.ConvVersGreg();
  int j = 0, m = 0, a = 0;
  const bool complete = rqbase::DateFormatGregorien(gregorien) && date.IsDatePrecise(&a, &m, &j, gregorien, true);
  copie = date;
  const int annee = TDateRQ(copie).RecupAnnee(true, nullptr, nullptr, nullptr, nullptr, true);
  TDateRQ pourFlottant(date);
  const float anneeDecimale = pourFlottant.RecupAnneeFloat(true);
  float anneeIntervalle = 0;
  rqbase::TInterval<float> iv;
  date.CalculAnneeFloatOuFourchette(anneeIntervalle, iv);
  const int absolus = date.CalcNbJoursAbs(true);

  json r;
  r["texte"] = Texte(date.GetDate());
  r["calendrier"] = LettreDe(date);
  r["acte"] = Texte(date.GetActe());
  r["exporte"] = Texte(date.ExportInString());
  r["gregorien"] = Texte(gregorien);
  r["vide"] = date.Vide();
  r["precise"] = date.IsDatePrecise(nullptr, nullptr, nullptr, "", false);
  r["jour_semaine"] = jourSemaine ? json{{"numero", numero}, {"abrege", Texte(abrege)}, {"complet", Texte(complet)}}
                                  : json{{"numero", nullptr}, {"abrege", ""}, {"complet", ""}};
  r["zodiaque"] = {{"indice", signe}, {"nom", signe >= 0 ? Texte(rqbase::Ressource(6150 + signe)) : json(nullptr)}};
  r["saison"] = {{"code", saison}, {"texte", Texte(texteSaison)}};
  r["jour_julien"] = complete ? json(rqbase::JourJulien(gregorien)) : json(nullptr);
  r["jours_absolus"] = NombreOuNul(absolus);
  r["annee"] = NombreOuNul(annee);
  r["annee_decimale"] = NombreOuNul(anneeDecimale);
  r["intervalle"] = {{"min", iv.InfOuvert ? json(nullptr) : json(iv.Inf)},
                     {"max", iv.SupOuvert ? json(nullptr) : json(iv.Sup)},
                     {"min_ouvert", iv.InfOuvert},
                     {"max_ouvert", iv.SupOuvert}};
  if (ctx.Json) {
    EcritJson(r);
    return;
  }
  auto ligne = [](const std::string& cle, const json& v) {
    Ecrit(cle + " : " + rqbase::DepuisUtf8(v.is_string() ? v.get<std::string>() : v.dump()));
  };
  ligne("Texte", r["texte"]);
  ligne("Calendrier", r["calendrier"]);
  ligne("Acte", r["acte"]);
  ligne("Exportée", r["exporte"]);
  ligne("Grégorien", r["gregorien"]);
  ligne("Vide", r["vide"]);
  ligne("Précise", r["precise"]);
  ligne("Jour de la semaine", jourSemaine ? json(complet) : json(""));
  ligne("Zodiaque", r["zodiaque"]["nom"]);
  ligne("Saison", r["saison"]["texte"]);
  ligne("Jour julien", r["jour_julien"]);
  ligne("Jours depuis le 01/01/0001", r["jours_absolus"]);
  ligne("Année", r["annee"]);
  ligne("Année décimale", r["annee_decimale"]);
  ligne("Intervalle", r["intervalle"]);
}

}  // namespace

rqbase::TDateRQ DateDeTexte(const std::string& utf8) { return LitDate(TOptionsDate{utf8, "", ""}); }


void AjouteCommandesDate(CLI::App& app, TContexteCli& ctx) {
  auto* date = app.add_subcommand("date", U("Dates et calendriers"));
  date->require_subcommand(1);

  auto o1 = std::make_shared<TOptionsDate>();
  auto o2 = std::make_shared<TOptionsDate>();
  auto strict = std::make_shared<bool>(false);
  auto approx = std::make_shared<bool>(false);
  auto defaut = std::make_shared<int>(0);
  auto vers = std::make_shared<std::string>();
  auto n = std::make_shared<int>(0);
  auto annee = std::make_shared<int>(0);

  auto* analyser = date->add_subcommand("analyser", U("Lit une date tapée et la normalise (code de refus sinon)"));
  analyser->add_option("TEXTE", o1->texte, U("Le texte de la date, par exemple \"fev 1872\""))->required();
  analyser->add_option("--calendrier,-c", o1->calendrier, U("Calendrier : G, R, H ou A (R si le texte en a la forme, G sinon)"));
  analyser->add_flag("--strict", *strict, U("Sans souplesse : les formes courtes ne déplacent pas les parties"));
  analyser->callback([&ctx, o1, strict] { Analyser(ctx, *o1, *strict); });

  auto* convertir = date->add_subcommand("convertir", U("Convertit une date dans un autre calendrier"));
  AjouteOptionsDate(convertir, *o1, "DATE", true);
  convertir->add_option("--vers", *vers, U("Calendrier d'arrivée : G, R ou H"))->required();
  convertir->callback([&ctx, o1, vers] {
    const TDateRQ d = LitDate(*o1);
    const char c = LettreCalendrier(*vers);
    if (c == 'A') throw ERqBase("Conversion vers A impossible : choisissez G, R ou H.");
    const std::string texte = Convertit(d, c);
    if (ctx.Json)
      EcritJson({{"texte", Texte(texte)}, {"calendrier", std::string(1, c)}});
    else
      Ecrit(texte);
  });

  auto* info = date->add_subcommand("info", U("Décrit une date : formes, jour, saison, années, intervalle"));
  AjouteOptionsDate(info, *o1, "DATE", true);
  info->callback([&ctx, o1] { Info(ctx, *o1); });

  auto* ecart = date->add_subcommand("ecart", U("Jours, années, mois et âge entre deux dates"));
  AjouteOptionsDate(ecart, *o1, "DATE1", false);
  AjouteOptionsDate(ecart, *o2, "DATE2", false);
  ecart->add_flag("--approx", *approx, U("Calcul approché : 365 jours l'an, 30 le mois"));
  ecart->callback([&ctx, o1, o2, approx] {
    float age = 0;
    int annees = 0, jours = 0, mois = 0;
    bool inverse = false;
    const int n = rqbase::CalcJours(LitDate(*o1), LitDate(*o2), &age, &annees, &jours, *approx, &inverse, &mois);
    if (n == rqbase::kIncalculable) throw ERqBase("Écart incalculable entre ces deux dates.");
    if (ctx.Json) {
      EcritJson({{"jours", n}, {"annees", NombreOuNul(annees)}, {"mois", NombreOuNul(mois)}, {"age", NombreOuNul(age)},
                 {"inverse", inverse}});
      return;
    }
    char ageTexte[32];
    std::snprintf(ageTexte, sizeof ageTexte, "%.3f", age);
    // Singulier jusqu'à 1, comme les années de CreerChnAn.
    Ecrit(std::to_string(n) + (n > 1 ? " jours, " : " jour, ") + rqbase::CreerChnAn(annees) + " et " + std::to_string(mois) +
          " mois, âge " + ageTexte + (inverse ? " (dates inversées)" : ""));
  });

  auto* comparer = date->add_subcommand("comparer", U("Ordre de deux dates : -1, 0 ou 1"));
  AjouteOptionsDate(comparer, *o1, "DATE1", false);
  AjouteOptionsDate(comparer, *o2, "DATE2", false);
  comparer->add_option("--defaut", *defaut, U("Résultat quand une fourchette et une date ne se départagent pas"));
  comparer->callback([&ctx, o1, o2, defaut] {
    const int r = TDateRQ::CompareDate(LitDate(*o1), LitDate(*o2), *defaut);
    const int signe = (r > 0) - (r < 0);
    if (ctx.Json)
      EcritJson({{"resultat", signe}});
    else
      Ecrit(std::to_string(signe));
  });

  auto* decaler = date->add_subcommand("decaler", U("Décale une date d'environ N jours (en mois et années)"));
  AjouteOptionsDate(decaler, *o1, "DATE", true);
  decaler->add_option("N", *n, U("Nombre de jours, négatif pour reculer"))->required()->allow_extra_args(false);
  decaler->callback([&ctx, o1, n] {
    TDateRQ d = LitDate(*o1);
    if (!d.Decalage(*n)) throw ERqBase("Cette date n'a pas d'année : rien à décaler.");
    if (ctx.Json)
      EcritJson({{"texte", Texte(d.GetDate())}});
    else
      Ecrit(d.GetDate());
  });

  auto* paques = date->add_subcommand("paques", U("Date de Pâques d'une année (1583 à 2499)"));
  paques->add_option("ANNEE", *annee, U("L'année"))->required();
  paques->callback([&ctx, annee] {
    std::string jour, mois;
    const std::string texte = rqbase::CalcDatePaques(*annee, &jour, &mois);
    if (texte.empty())
      throw ERqBase("Pâques ne se calcule que pour les années 1583 à 2499 (année demandée : " + std::to_string(*annee) +
                    ").");
    if (ctx.Json) {
      EcritJson({{"texte", Texte(texte)}, {"jour", std::stoi(jour)}, {"mois", std::stoi(mois)}});
    } else {
      Ecrit(texte);
    }
  });
}

}  // namespace rqcli
