#include "rqbase/fields/def_chps_cs.h"

#include <algorithm>
#include <set>

#include "rqbase/fields/table_defaut.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/platform/journal.h"
#include "rqbase/platform/ressources.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/util/erreur.h"
#include "rqbase/util/fichiers.h"

namespace rqbase {

std::string __asStructFilenameNew;

namespace {

constexpr int kRessourceVersion = 7251;

bool EstFichierDch(const std::string& chemin) {
  if (chemin.size() < 4) return false;
  return MajusculesCp1252(chemin.substr(chemin.size() - 4)) == ".DCH" && FichierExiste(chemin);
}

void Defaut(TStringList& l, const char* texte) { l.SetCommaText(texte); }

}  // namespace

TDefChpsCs::TDefChpsCs(TContexteDossier* fichier, bool nouveau, const std::string& cheminCatalogue)
    : Fichier(fichier), Chemin(cheminCatalogue) {
  Construit(nouveau);
}

TDefChpsCs::TDefChpsCs(TContexteDossier* fichier, bool nouveau)
    : Fichier(fichier), Chemin(fichier ? fichier->FabriqueNomFichier(tfDch) : std::string()) {
  Construit(nouveau);
}

TDefChpsCs::TDefChpsCs(TContexteDossier* fichier, const TContenuDch& contenu, bool miseANiveau) : Fichier(fichier) {
  Initialise();
  Charge(contenu, miseANiveau);
}

TDefChpsCs::~TDefChpsCs() = default;

std::string TDefChpsCs::DossierCatalogue() const {
  const auto p = Chemin.find_last_of('/');
  return p == std::string::npos ? std::string() : Chemin.substr(0, p + 1);
}

void TDefChpsCs::Initialise() {
  VersionChaine = Ressource(kRessourceVersion);
  Defaut(TypesSource, "Générale");
  Defaut(TypesNote, "Générale");
  Defaut(TypesIllustration, "Générale,Transcription");
}

namespace {

constexpr const char* kTitreCatalogue = "Catalogue des champs";

std::string NomSeul(const std::string& chemin) {
  const size_t barre = chemin.find_last_of('/');
  return barre == std::string::npos ? chemin : chemin.substr(barre + 1);
}

enum class TIssueAbime { Laisse, MisDeCote, Echec };

// Un fichier catalogue que la lecture n'a pas pris en entier : celui du dossier est mis de
// côté (sauf en lecture seule, où rien ne sera écrit) ; un modèle pris hors du dossier
// n'est jamais touché. L'utilisateur est prévenu, et le journal le garde.
TIssueAbime TraiteFichierAbime(TContexteDossier* fichier, const std::string& source, const std::string& dommage,
                               bool modele) {
  const std::string abime = "« " + NomSeul(source) + " » est abîmé (" + dommage + ")";
  if (modele) {
    const std::string texte = "Le modèle de catalogue " + abime + " : seule sa partie lisible est reprise, "
                              "et il n'est pas modifié.";
    AddLog(texte);
    Dialogue().Information(texte, kTitreCatalogue);
    return TIssueAbime::Laisse;
  }
  if (fichier && fichier->IsReadOnly()) {
    const std::string texte = "Le catalogue des champs " + abime + ". Le dossier est en lecture seule : seule "
                              "la partie lisible est montrée, et le fichier n'est pas modifié.";
    AddLog(texte);
    Dialogue().Information(texte, kTitreCatalogue);
    return TIssueAbime::Laisse;
  }
  const std::string misDeCote = MetDeCoteDch(source);
  if (misDeCote.empty()) {
    const std::string texte = "Le catalogue des champs " + abime + " et n'a pas pu être mis de côté : il n'est "
                              "pas modifié, et le dossier ne peut pas être utilisé tel quel.";
    AddLog(texte);
    Dialogue().Erreur(texte, kTitreCatalogue);
    return TIssueAbime::Echec;
  }
  const std::string texte = "Le catalogue des champs " + abime + ". Il a été mis de côté sous le nom « " +
                            NomSeul(misDeCote) + " », et le catalogue du dossier est refait de ce qui a pu "
                            "en être lu.";
  AddLog(texte);
  Dialogue().Information(texte, kTitreCatalogue);
  return TIssueAbime::MisDeCote;
}

}  // namespace

void TDefChpsCs::Construit(bool nouveau) {
  Initialise();
  std::string source = Chemin;
  bool depuisModele = false;
  if (nouveau && EstFichierDch(__asStructFilenameNew)) {
    source = __asStructFilenameNew;
    depuisModele = true;
  }
  const bool lire = depuisModele || (!nouveau && FichierExiste(source));

  bool change = false;
  if (lire) {
    TContenuDch c;
    if (!LitFichierDch(source, c)) {
      // Un catalogue illisible n'est surtout pas remplacé par la table par défaut.
      ErreurEntreeSortie = true;
      if (Fichier) Fichier->FixeErreur(true);
      AddLog("Catalogue des champs illisible : " + source);
      return;
    }
    // Un fichier que la lecture n'a pas pris en entier est mis de côté avant que rien ne
    // soit écrit par-dessus ; le catalogue est refait de ce qui a pu être lu. S'il ne peut
    // être mis de côté, plus rien n'est écrit (Sauvegarde refuse après une erreur).
    bool misDeCote = false;
    if (!c.Entier()) {
      const TIssueAbime issue = TraiteFichierAbime(Fichier, source, c.Dommage, depuisModele);
      if (issue == TIssueAbime::Echec) {
        ErreurEntreeSortie = true;
        if (Fichier) Fichier->FixeErreur(true);
      }
      misDeCote = issue == TIssueAbime::MisDeCote;
    }
    // Un dossier neuf pris sur un modèle reçoit tout de suite son propre fichier, de même
    // qu'un dossier dont le fichier abîmé vient d'être mis de côté.
    change = Charge(c, !nouveau) || depuisModele || misDeCote;
  } else {
    RemplitDefaut();
    if (!Sauvegarde()) return;
    change = Restructure();
    change |= MetEnPlacePhrasesEtSymboles();
    NumeroteRangs();
  }
  if (change) Sauvegarde();
}

bool TDefChpsCs::Charge(const TContenuDch& c, bool miseANiveau) {
  for (const auto& ligne : c.Champs) CreatChpCs(ligne);
  EquivProfession = c.EquivProfession;
  EquivNaissance = c.EquivNaissance;
  EquivDeces = c.EquivDeces;
  EquivUnion = c.EquivUnion;
  EquivResidence = c.EquivResidence;
  ApplitListes(c);
  Ancien = c.Ancien;
  if (c.VersionChaine) VersionChaine = *c.VersionChaine;
  bool change = false;
  if (miseANiveau) change |= MetANiveau();
  change |= Restructure();
  change |= MetEnPlacePhrasesEtSymboles();
  NumeroteRangs();
  return change;
}

void TDefChpsCs::ApplitListes(const TContenuDch& c) {
  // Une liste absente garde sa valeur par défaut, une liste vide la reprend.
  if (c.TypesSource && !c.TypesSource->empty()) TypesSource.SetCommaText(*c.TypesSource);
  if (c.TypesNote && !c.TypesNote->empty()) TypesNote.SetCommaText(*c.TypesNote);
  if (c.TypesIllustration && !c.TypesIllustration->empty()) TypesIllustration.SetCommaText(*c.TypesIllustration);
}

void TDefChpsCs::RemplitDefaut() {
  Champs.clear();
  for (const auto& ligne : LignesDefaut()) CreatChpCs(ligne);
  NumeroteIndiceIndexDupli();
  EquivProfession = TEquivChpCs("PROFESSION");
  EquivResidence = TEquivChpCs("RESIDENCE");
  EquivNaissance = TEquivChpCs("NAISSANCE", "BAPTEME");
  EquivDeces = TEquivChpCs("DECES", "INHUMATION");
  EquivUnion = TEquivChpCs("UNION", "CTR-MARIAGE");
  NumeroteRangs();
}

bool TDefChpsCs::MetANiveau() {
  bool change = false;
  for (const auto& ajout : AjoutsMiseANiveau()) {
    if (IsChampExist(ajout.Libelle)) continue;
    // Voulu : FILIATION_MERE arrive toujours avec FILIATION_PERE, sans autre test.
    for (const auto& ligne : ajout.Lignes) CreatChpCs(ligne);
    change = true;
  }
  return change;
}

bool TDefChpsCs::Restructure() {
  bool change = false;
  if (TChpCs* r = RechercheChampsInternePtr("RECENSEMENT"); r && r->NbMorceaux == 1) {
    r->SetNbMorceaux(4);
    r->DecompTailleMorceau("90, 4, 3, 3");
    r->DecompNomMorceaux("Quartier, n° maison, n° ménage, n° individu");
    change = true;
  }
  if (TChpCs* d = RechercheChampsInternePtr("DDMF")) {
    const auto avant = d->TailleMorceaux;
    d->DecompTailleMorceau("16");
    change |= d->TailleMorceaux != avant;
  }
  return change;
}

bool TDefChpsCs::MetEnPlacePhrasesEtSymboles() {
  bool change = UpdateAllExpressionsField();
  if (!Modifie)
    for (const auto& a : AbreviationsParDefaut())
      change |= MiseEnPlaceAbbrevation(a.Libelle, a.Symbole, a.Masculin, a.Feminin);
  return change;
}

void TDefChpsCs::Ajoute(std::unique_ptr<TChpCs> c) {
  if (!c->Symbole.empty() || !c->LibelleMasculin.empty() || !c->LibelleFeminin.empty()) Modifie = true;
  Champs.push_back(std::move(c));
}

TChpCs* TDefChpsCs::CreatChpCs(const std::string& ligne) {
  auto c = std::make_unique<TChpCs>(false);
  c->Decode(ligne);
  TChpCs* p = c.get();
  Ajoute(std::move(c));
  return p;
}

TChpCs* TDefChpsCs::RechercheChampsInternePtr(const std::string& libelle) const {
  const int rg = RechercheChampsInterneRg(libelle);
  return rg < 0 ? nullptr : Champs[size_t(rg)].get();
}

int TDefChpsCs::RechercheChampsInterneRg(const std::string& libelle) const {
  for (size_t i = 0; i < Champs.size(); ++i)
    if (Champs[i]->LibelleInterne == libelle) return int(i);
  return -1;
}

int TDefChpsCs::RechercheChampsInterneRgEven(const std::string& libelle) const {
  int rg = 0;
  for (const auto& c : Champs) {
    if (!c->IsEvenement()) continue;
    if (c->LibelleInterne == libelle) return rg;
    ++rg;
  }
  return -1;
}

TChpCs* TDefChpsCs::RechercheChampsLibelleEcranPtr(const std::string& libelle) const {
  for (const auto& c : Champs)
    if (c->LibelleEcran == libelle) return c.get();
  return nullptr;
}

std::string TDefChpsCs::RetourneLibelleEcran(const std::string& libelleInterne) const {
  const TChpCs* c = RechercheChampsInternePtr(libelleInterne);
  return c ? c->LibelleEcran : std::string();
}

TChpCs* TDefChpsCs::RetChpCsChnLibelEcranLibelInterne(const std::string& s) const {
  const auto p = s.find("#_EQ");
  if (p == std::string::npos) return nullptr;
  const auto debut = p + 4;
  const auto fin = s.find("#_EQ", debut);
  return RechercheChampsInternePtr(s.substr(debut, fin == std::string::npos ? std::string::npos : fin - debut));
}

TChpCs* TDefChpsCs::RetChpCsRgEven(int n, bool sansStandard) const {
  int rg = 0;
  for (const auto& c : Champs) {
    if (!c->IsEvenement() || (sansStandard && IsEvenStandard(c->LibelleInterne))) continue;
    if (rg++ == n) return c.get();
  }
  return nullptr;
}

TChpCs* TDefChpsCs::RetChpCsRgPerso(int n, bool sansStandard) const {
  int rg = 0;
  for (const auto& c : Champs) {
    if (!c->IsPerso() || (sansStandard && IsEvenStandard(c->LibelleInterne))) continue;
    if (rg++ == n) return c.get();
  }
  return nullptr;
}

std::string TDefChpsCs::RetLibChpEquiv(const std::string& libelle) const {
  for (const TEquivChpCs* e : {&EquivProfession, &EquivResidence, &EquivNaissance, &EquivDeces, &EquivUnion})
    if (e->LibelleChamp1 == libelle && !e->LibelleUtilisateur.empty()) return e->LibelleUtilisateur;
  return libelle;
}

void TDefChpsCs::AjouteEvenement(TStringList& liste, bool sansStandard) const {
  for (const auto& c : Champs)
    if (c->IsEvenement() && !(sansStandard && IsEvenStandard(c->LibelleInterne))) liste.Add(c->LibelleEcran);
}

void TDefChpsCs::AjouteTous(TStringList& liste) const {
  for (const auto& c : Champs) liste.Add(c->LibelleEcran);
}

bool TDefChpsCs::IsEvenStandard(const std::string& libelle) const {
  if (libelle.empty()) return false;
  for (const TEquivChpCs* e : {&EquivNaissance, &EquivDeces, &EquivUnion})
    if (e->LibelleChamp1 == libelle || e->LibelleChamp2 == libelle) return true;
  return false;
}

namespace {
bool EstDe(const TChpCs* c, const TEquivChpCs& e, bool premierSeul) {
  if (!c || c->LibelleInterne.empty()) return false;
  return c->LibelleInterne == e.LibelleChamp1 || (!premierSeul && c->LibelleInterne == e.LibelleChamp2);
}
}  // namespace

bool TDefChpsCs::IsEvenNaissance(const TChpCs* c) const { return EstDe(c, EquivNaissance, false); }
bool TDefChpsCs::IsEvenNaissanceUniquement(const TChpCs* c) const { return EstDe(c, EquivNaissance, true); }
bool TDefChpsCs::IsEvenDeces(const TChpCs* c) const { return EstDe(c, EquivDeces, false); }
bool TDefChpsCs::IsEvenDecesUniquement(const TChpCs* c) const { return EstDe(c, EquivDeces, true); }
bool TDefChpsCs::IsEvenUnion(const TChpCs* c) const { return EstDe(c, EquivUnion, false); }
bool TDefChpsCs::IsEvenUnionUniquement(const TChpCs* c) const { return EstDe(c, EquivUnion, true); }

bool TDefChpsCs::MiseEnPlaceAbbrevation(const std::string& libelle, const std::string& symbole,
                                        const std::string& masculin, const std::string& feminin) {
  TChpCs* c = RechercheChampsInternePtr(libelle);
  if (!c) return false;
  const bool change = c->Symbole != symbole || c->LibelleMasculin != masculin || c->LibelleFeminin != feminin;
  c->Symbole = symbole;
  c->LibelleMasculin = masculin;
  c->LibelleFeminin = feminin;
  return change;
}

bool TDefChpsCs::UpdateExpressionsField(const std::string& libelle, const std::string& expressions) {
  TChpCs* c = RechercheChampsInternePtr(libelle);
  if (!c || c->Expressions.Count() > 0 || expressions.empty()) return false;
  c->Expressions.SetDelimitedText(expressions);
  return true;
}

bool TDefChpsCs::UpdateAllExpressionsField() {
  bool change = false;
  for (const auto& p : PhrasesParDefaut()) change |= UpdateExpressionsField(p.Libelle, p.Phrases);
  return change;
}

TContenuDch TDefChpsCs::ContenuFichier() const {
  TContenuDch c;
  c.Champs.reserve(Champs.size());
  for (const auto& chp : Champs) c.Champs.push_back(chp->Code());
  c.EquivProfession = EquivProfession;
  c.EquivNaissance = EquivNaissance;
  c.EquivDeces = EquivDeces;
  c.EquivUnion = EquivUnion;
  c.TypesSource = TypesSource.CommaText();
  c.TypesNote = TypesNote.CommaText();
  c.EquivResidence = EquivResidence;
  c.VersionChaine = VersionChaine;
  c.TypesIllustration = TypesIllustration.CommaText();
  return c;
}

bool TDefChpsCs::Sauvegarde() {
  // Un dossier en lecture seule ne change pas sur le disque : le catalogue mis à
  // niveau ne vit qu'en mémoire.
  if (Fichier && Fichier->IsReadOnly()) return true;
  // Après une erreur d'entrée-sortie du catalogue (lecture ou écriture ratée, fichier abîmé
  // qui n'a pas pu être mis de côté), le fichier sur le disque est peut-être tout ce qui
  // reste du catalogue de l'utilisateur : rien ne l'écrase.
  if (ErreurEntreeSortie) return false;
  if (Chemin.empty() || !EcritFichierDch(Chemin, ContenuFichier())) {
    ErreurEntreeSortie = true;
    if (Fichier) Fichier->FixeErreur(true);
    AddLog("Catalogue des champs : écriture impossible de " + Chemin);
    return false;
  }
  return true;
}

bool TDefChpsCs::PriseEnCompteModification() {
  NumeroteIndiceIndexDupli();
  NumeroteRangs();
  return Sauvegarde();
}

void TDefChpsCs::NumeroteIndiceIndexDupli() {
  long plusHaut = 0;
  for (const auto& c : Champs)
    for (long n : c->IndexFicDupli) plusHaut = std::max(plusHaut, n);
  long suivant = plusHaut > 0 ? plusHaut + 1 : 9;
  for (const auto& c : Champs) {
    if (c->IndexFicDupli.size() != size_t(std::max(c->NbMorceaux, 0)))
      throw ERqBase("Catalogue des champs : morceaux incohérents pour " + c->LibelleInterne);
    // Nom, prénoms et numéro Sosa n'ont pas de dictionnaire à eux.
    if (c->Type == tcNom || c->Type == tcPrenom || c->Type == tcNoSosa) continue;
    for (long& n : c->IndexFicDupli)
      if (n == 0) n = suivant++;
  }
}

void TDefChpsCs::NumeroteRangs() {
  int even = 0, perso = 0;
  for (const auto& c : Champs) {
    c->Rang1 = c->IsEvenement() ? even++ : -1;
    c->Rang2 = c->IsPerso() ? perso++ : -1;
  }
}

bool TDefChpsCs::IsSignatureExist() const {
  for (const auto& c : Champs)
    if (c->Type == tcCpa && c->LibelleInterne == "SIGNATURE") return true;
  return false;
}

void TDefChpsCs::AjoutSignature() {
  // Voulu : la SIGNATURE de la table par défaut est un booléen ; celle-ci est un texte.
  CreatChpCs("SIGNATURE\tSignature\tCPA\t\t1\t\t\t_SIG");
  NumeroteRangs();
}

std::string TDefChpsCs::NouveauLibelleInterne(const std::string& libelle, const TDefChpsCs* autre) const {
  const std::string base = libelle.substr(0, 17);
  for (long i = 0;; ++i) {
    const std::string candidat = base + std::to_string(i);
    if (!IsChampExist(candidat) && !(autre && autre->IsChampExist(candidat))) return candidat;
  }
}

namespace {
bool FormeChangee(const TChpCs& a, const TChpCs& n) {
  return a.Type != n.Type || a.NbMorceaux != n.NbMorceaux || a.TailleMorceaux != n.TailleMorceaux ||
         a.Liaison != n.Liaison;
}
bool EvenementsMemeLiaison(const TChpCs& a, const TChpCs& n) {
  return a.IsEvenement() && n.IsEvenement() && a.Liaison == n.Liaison;
}
}  // namespace

std::vector<TReecriture> TDefChpsCs::PlanAjusteStructure(const TDefChpsCs& ancien) const {
  std::vector<TReecriture> plan;
  for (const auto& n : Champs) {
    const TChpCs* a = ancien.RechercheChampsInternePtr(n->LibelleInterne);
    if (!a || !FormeChangee(*a, *n)) continue;
    plan.push_back({EvenementsMemeLiaison(*a, *n) ? TReecriture::MorceauxEvens : TReecriture::Type,
                    n->LibelleInterne, {}});
  }
  return plan;
}

void TDefChpsCs::AjusteStructureFichier(bool avecProgression, TDefChpsCs* ancien, long p1, long p2) {
  (void)avecProgression;
  if (!ancien) return;
  const auto plan = PlanAjusteStructure(*ancien);
  if (plan.empty()) return;
  if (!Reecritures)
    throw ERqBase("Catalogue des champs : les valeurs enregistrées ne peuvent pas être réécrites ; "
                  "la structure n'est pas modifiée.");
  for (const auto& r : plan) {
    const TChpCs& a = *ancien->RechercheChampsInternePtr(r.Libelle);
    const TChpCs& n = *RechercheChampsInternePtr(r.Libelle);
    const bool ok = r.Genre == TReecriture::MorceauxEvens ? Reecritures->AjusteMorceauxEvens(a, n, p1, p2)
                                                          : Reecritures->ChangementType(a, n, p1, p2);
    if (!ok) throw ERqBase("Catalogue des champs : la réécriture du champ " + r.Libelle + " a échoué.");
  }
}

void TDefChpsCs::MajStruct(bool sauvegarde, TDefChpsCs* source) {
  if (!source) return;
  // D'abord le plan : rien ne change si une réécriture est nécessaire et impossible.
  struct TEtape {
    const TChpCs* src;
    TChpCs* local;
    enum { Ajout, Garde, Morceaux, Renomme } genre;
  };
  std::vector<TEtape> etapes;
  bool reecrire = false;
  for (const auto& s : source->Champs) {
    TChpCs* l = RechercheChampsInternePtr(s->LibelleInterne);
    if (!l) {
      etapes.push_back({s.get(), nullptr, TEtape::Ajout});
    } else if (l->MemeStructure(*s)) {
      etapes.push_back({s.get(), l, TEtape::Garde});
    } else {
      etapes.push_back({s.get(), l, EvenementsMemeLiaison(*l, *s) ? TEtape::Morceaux : TEtape::Renomme});
      reecrire = true;
    }
  }
  if (reecrire && !Reecritures)
    throw ERqBase("Catalogue des champs : les valeurs enregistrées ne peuvent pas être réécrites ; "
                  "la structure n'est pas modifiée.");

  for (const auto& e : etapes) {
    switch (e.genre) {
      case TEtape::Garde:
        break;
      case TEtape::Morceaux: {
        TChpCs ancien(e.local);
        e.local->SetNbMorceaux(e.src->NbMorceaux);
        e.local->TailleMorceaux = e.src->TailleMorceaux;
        e.local->NomMorceaux = e.src->NomMorceaux;
        e.local->SousTagGedCom = e.src->SousTagGedCom;
        if (!Reecritures->AjusteMorceauxEvens(ancien, *e.local, 0, 0))
          throw ERqBase("Catalogue des champs : la réécriture du champ " + e.local->LibelleInterne + " a échoué.");
        break;
      }
      case TEtape::Renomme: {
        const std::string nouveau = NouveauLibelleInterne(e.local->LibelleInterne, source);
        if (!Reecritures->RenommeLibelleInterne(e.local->LibelleInterne, nouveau))
          throw ERqBase("Catalogue des champs : le renommage du champ " + e.local->LibelleInterne + " a échoué.");
        e.local->LibelleInterne = nouveau;
        [[fallthrough]];
      }
      case TEtape::Ajout: {
        auto c = std::make_unique<TChpCs>(e.src);
        // Les numéros de dictionnaire de l'autre dossier ne veulent rien dire ici.
        std::fill(c->IndexFicDupli.begin(), c->IndexFicDupli.end(), 0);
        Ajoute(std::move(c));
        break;
      }
    }
  }
  NumeroteIndiceIndexDupli();
  NumeroteRangs();
  if (sauvegarde) Sauvegarde();
}

}  // namespace rqbase
