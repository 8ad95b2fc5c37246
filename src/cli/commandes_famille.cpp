// Les commandes des liens de famille : lier et délier parents, enfants et conjoints,
// supprimer et restaurer une personne, remettre conjoints et enfants dans leur ordre, et
// vérifier (réparer) les liens d'un dossier.
//
// Chaque commande vérifie ses arguments avant d'ouvrir le dossier en écriture, et la
// bibliothèque vérifie le lien avant d'écrire : un refus sort avec le code 1, un message
// français, et pas un octet changé.
#include <map>
#include <optional>
#include <vector>

#include "commandes.h"
#include "ouverture.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/person/liaisons.h"
#include "rqbase/storage/fic_pers_suppr.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/erreur.h"

namespace rqcli {

namespace {

using rqbase::ERqBase;
using rqbase::TFicPersons;
using rqbase::TPerson;

struct TOptionsFamille {
  std::string Chemin;
  long Pere = 0, Mere = 0, Enfant = 0, Numero = 0;
  std::vector<long> Conjoints;
  bool Union = false, Anonymiser = false;
  std::optional<long> NumeroOptionnel;
};

std::string Num(long n) { return std::to_string(n); }

json ListeLiens(const rqbase::TLienPers* liens, int n) {
  json l = json::array();
  for (int i = 0; i < n; ++i)
    if (liens[i].No != 0) l.push_back(static_cast<long>(liens[i].No));
  return l;
}

json ListeConjoints(const TPerson& p) {
  json l = json::array();
  for (const rqbase::TLienConj& c : p.Enreg.Conjoints)
    if (c.No != 0) l.push_back(static_cast<long>(c.No));
  return l;
}

// Les liens d'une personne tels que `verifier-liens` les compare avant et après.
json Liens(const TPerson& p) {
  return {{"pere", static_cast<long>(p.Enreg.Pere.No)},
          {"mere", static_cast<long>(p.Enreg.Mere.No)},
          {"conjoints", ListeConjoints(p)},
          {"enfants", ListeLiens(p.Enreg.Enfants, TPerson::NbEnfants)},
          {"supprime", p.FicheSupprimee()}};
}

void VerifieNumero(TFicPersons& fic, long no) {
  if (no < 1 || no > fic.NbPersEffective()) throw ERqBase("La personne " + Num(no) + " n'existe pas dans ce dossier.");
}

// lier et delier partagent leurs options : (--pere et/ou --mere) avec --enfant, ou --conjoint A B.
void LierOuDelier(TContexteCli& ctx, const TOptionsFamille& o, bool lier) {
  const bool parents = o.Pere != 0 || o.Mere != 0 || o.Enfant != 0;
  const bool couple = !o.Conjoints.empty();
  if (parents == couple)
    throw ERqBase("Donnez soit --pere et/ou --mere avec --enfant, soit --conjoint A B : rien n'a changé.");
  if (parents && (o.Enfant == 0 || (o.Pere == 0 && o.Mere == 0)))
    throw ERqBase("Un lien de parent demande --enfant et --pere ou --mere : rien n'a changé.");
  if (couple && o.Conjoints.size() != 2) throw ERqBase("--conjoint demande deux numéros : rien n'a changé.");
  if (!lier && o.Union) throw ERqBase("--union ne sert qu'à lier : rien n'a changé.");
  auto gest = OuvrePourEcrire(o.Chemin);
  TFicPersons& fic = *gest->FicPersons();
  bool change = false;
  if (couple) {
    change = lier ? rqbase::LieConjoints(fic, o.Conjoints[0], o.Conjoints[1], o.Union)
                  : rqbase::DelieConjoints(fic, o.Conjoints[0], o.Conjoints[1]);
  } else {
    // Avec deux parents, tout se vérifie pour les deux avant le premier lien écrit.
    for (const long parent : {o.Pere, o.Mere})
      if (parent != 0) VerifieNumero(fic, parent);
    VerifieNumero(fic, o.Enfant);
    if (o.Pere != 0)
      change |= lier ? rqbase::LieParent(fic, o.Pere, o.Enfant, true) : rqbase::DelieParent(fic, o.Pere, o.Enfant, true);
    if (o.Mere != 0)
      change |=
          lier ? rqbase::LieParent(fic, o.Mere, o.Enfant, false) : rqbase::DelieParent(fic, o.Mere, o.Enfant, false);
  }
  VerifieEcriture(*gest, lier ? "le lien n'a pas été enregistré." : "le lien n'a pas été défait.");
  if (ctx.Json) return EcritJson({{"change", change}});
  Ecrit(change ? (lier ? "Lien enregistré." : "Lien défait.") : (lier ? "Ce lien existait déjà." : "Ce lien n'existait pas."));
}

void SupprimePersonne(TContexteCli& ctx, const TOptionsFamille& o) {
  auto gest = OuvrePourEcrire(o.Chemin);
  TFicPersons& fic = *gest->FicPersons();
  VerifieNumero(fic, o.Numero);
  TPerson p(&fic, o.Numero);
  if (p.FicheSupprimee()) throw ERqBase("La personne " + Num(o.Numero) + " est déjà supprimée : rien n'a changé.");
  p.Suppression(o.Anonymiser);
  VerifieEcriture(*gest, "la personne n'a pas été supprimée.");
  if (ctx.Json) return EcritJson({{"numero", o.Numero}, {"supprime", true}});
  Ecrit("Personne " + Num(o.Numero) + " supprimée.");
}

void RestaurePersonne(TContexteCli& ctx, const TOptionsFamille& o) {
  auto gest = OuvrePourEcrire(o.Chemin);
  TFicPersons& fic = *gest->FicPersons();
  VerifieNumero(fic, o.Numero);
  TPerson p(&fic, o.Numero);
  if (!p.FicheSupprimee()) throw ERqBase("La personne " + Num(o.Numero) + " n'est pas supprimée : rien n'a changé.");
  // La fiche supprimée a gardé ses propres liens : la marque levée et ses lignes montrées,
  // la vérification des liens la remet dans les tables des autres.
  p.Enreg.Supprime = ' ';
  p.RestaurationData();
  p.LibereMemoire();
  if (rqbase::TFicPersSuppr* suppr = gest->FicPersSuppr()) suppr->SuppNo(o.Numero);
  p.Enregistrement(-3, nullptr, true);
  if (p.VerifLienSysmetrique()) p.Enregistrement(-3, nullptr, true);
  VerifieEcriture(*gest, "la personne n'a pas été restaurée.");
  if (ctx.Json) return EcritJson({{"numero", o.Numero}, {"supprime", false}});
  Ecrit("Personne " + Num(o.Numero) + " restaurée.");
}

void Classe(TContexteCli& ctx, const TOptionsFamille& o) {
  auto gest = OuvrePourEcrire(o.Chemin);
  TFicPersons& fic = *gest->FicPersons();
  VerifieNumero(fic, o.Numero);
  TPerson p(&fic, o.Numero);
  if (p.FicheSupprimee()) throw ERqBase("La personne " + Num(o.Numero) + " est supprimée : rien n'a changé.");
  p.EnregClassementEnfConj(true);
  VerifieEcriture(*gest, "l'ordre n'a pas été enregistré.");
  const json r = {{"numero", o.Numero},
                  {"conjoints", ListeConjoints(p)},
                  {"enfants", ListeLiens(p.Enreg.Enfants, TPerson::NbEnfants)}};
  if (ctx.Json) return EcritJson(r);
  std::string conj, enf;
  for (const auto& c : r["conjoints"]) conj += (conj.empty() ? "" : ", ") + Num(c.get<long>());
  for (const auto& e : r["enfants"]) enf += (enf.empty() ? "" : ", ") + Num(e.get<long>());
  Ecrit("Conjoints : " + conj);
  Ecrit("Enfants   : " + enf);
}

// Les réparations de la bibliothèque sur une personne ou sur tout le dossier. Chaque
// personne que la réparation touche (elle-même ou un proche) est comparée avant et après :
// le compte rendu nomme chacune de celles dont les liens ont changé.
void VerifieLiens(TContexteCli& ctx, const TOptionsFamille& o) {
  auto gest = OuvrePourEcrire(o.Chemin);
  TFicPersons& fic = *gest->FicPersons();
  const long nb = fic.NbPersEffective();
  long premier = 1, dernier = nb;
  if (o.NumeroOptionnel) {
    VerifieNumero(fic, *o.NumeroOptionnel);
    premier = dernier = *o.NumeroOptionnel;
  }
  std::map<long, std::pair<json, json>> changes;
  TPerson lu(&fic);
  auto proches = [&](const TPerson& p) {
    std::vector<long> l{p.No()};
    for (const long n : {static_cast<long>(p.Enreg.Pere.No), static_cast<long>(p.Enreg.Mere.No)}) l.push_back(n);
    for (const rqbase::TLienConj& c : p.Enreg.Conjoints) l.push_back(c.No);
    for (const rqbase::TLienPers& e : p.Enreg.Enfants) l.push_back(e.No);
    std::vector<long> r;
    for (const long n : l)
      if (n >= 1 && n <= nb) r.push_back(n);
    return r;
  };
  long verifiees = 0;
  for (long no = premier; no <= dernier; ++no) {
    TPerson p(&fic, no);
    const std::vector<long> touches = proches(p);
    std::map<long, json> avant;
    for (const long n : touches) {
      lu.Lecture(n);
      avant[n] = Liens(lu);
    }
    const bool horsFichier = p.VerifLienHorsFichier();
    const bool symetrie = !p.FicheSupprimee() && p.VerifLienSysmetrique();
    if (horsFichier || symetrie) p.Enregistrement(-3, nullptr, true);
    ++verifiees;
    for (const auto& [n, liensAvant] : avant) {
      lu.Lecture(n);
      json apres = Liens(lu);
      if (apres == liensAvant) continue;
      auto [it, neuf] = changes.try_emplace(n, liensAvant, apres);
      if (!neuf) it->second.second = std::move(apres);
    }
  }
  VerifieEcriture(*gest, "les réparations n'ont pas toutes été enregistrées.");
  json modifiees = json::array();
  for (auto& [n, av] : changes)
    if (av.first != av.second) modifiees.push_back({{"numero", n}, {"avant", av.first}, {"apres", av.second}});
  if (ctx.Json) return EcritJson({{"verifiees", verifiees}, {"modifiees", modifiees}});
  Ecrit("Personnes vérifiées : " + Num(verifiees) + ", liens changés : " + Num(static_cast<long>(modifiees.size())));
  for (const json& m : modifiees) Ecrit("  " + Num(m["numero"].get<long>()) + " : " + m["avant"].dump() + " -> " + m["apres"].dump());
}

void OptionsLien(CLI::App* c, TOptionsFamille& o) {
  c->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  c->add_option("--pere", o.Pere, U("Numéro du père"));
  c->add_option("--mere", o.Mere, U("Numéro de la mère"));
  c->add_option("--enfant", o.Enfant, U("Numéro de l'enfant"));
  c->add_option("--conjoint", o.Conjoints, U("Numéros des deux conjoints"))->expected(2);
}

}  // namespace

void AjouteCommandesFamille(CLI::App& app, TContexteCli& ctx) {
  static TOptionsFamille o;
  auto* lier = app.add_subcommand("lier", U("Lie un parent à un enfant, ou deux conjoints"));
  OptionsLien(lier, o);
  lier->add_flag("--union", o.Union, U("Ajoute un événement d'union vierge au couple"));
  lier->callback([&ctx] { LierOuDelier(ctx, o, true); });

  auto* delier = app.add_subcommand("delier", U("Défait le lien d'un parent et d'un enfant, ou d'un couple"));
  OptionsLien(delier, o);
  delier->callback([&ctx] { LierOuDelier(ctx, o, false); });

  auto* supprimer = app.add_subcommand("supprimer-personne", U("Supprime une personne (restaurable)"));
  supprimer->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  supprimer->add_option("N", o.Numero, U("Numéro de la personne"))->required();
  supprimer->add_flag("--anonymiser", o.Anonymiser, U("Remplace le nom par XXX et efface les prénoms"));
  supprimer->callback([&ctx] { SupprimePersonne(ctx, o); });

  auto* restaurer = app.add_subcommand("restaurer-personne", U("Restaure une personne supprimée et ses liens"));
  restaurer->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  restaurer->add_option("N", o.Numero, U("Numéro de la personne"))->required();
  restaurer->callback([&ctx] { RestaurePersonne(ctx, o); });

  auto* classer = app.add_subcommand("classer", U("Range conjoints (date d'union) et enfants (date de naissance)"));
  classer->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  classer->add_option("N", o.Numero, U("Numéro de la personne"))->required();
  classer->callback([&ctx] { Classe(ctx, o); });

  auto* verifier = app.add_subcommand("verifier-liens", U("Répare les liens à sens unique ou hors du fichier"));
  verifier->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  verifier->add_option("N", o.NumeroOptionnel, U("Numéro d'une personne (tout le dossier sinon)"));
  verifier->callback([&ctx] { VerifieLiens(ctx, o); });
}

}  // namespace rqcli
