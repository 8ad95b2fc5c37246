#include "rqbase/gedcom/export_gedcom.h"

#include <algorithm>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

#include "rqbase/dossier/gest_fic.h"
#include "rqbase/fields/chp_cs.h"
#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/gedcom/dates_gedcom.h"
#include "rqbase/gedcom/lieux_gedcom.h"
#include "rqbase/index/prenom_usuel.h"
#include "rqbase/notes/note.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/places/gestduplicat.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/progression.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/evenement.h"
#include "rqbase/storage/fic_evens.h"
#include "rqbase/util/chaines.h"

namespace rqbase {

namespace {

class TEcrivain {
 public:
  // Une ligne ; une valeur longue ou de plusieurs lignes passe en CONC et CONT.
  // `brut` : la valeur garde ses '@' (l'échappement de calendrier d'une date).
  void Ligne(int niveau, std::string_view tag, std::string_view valeur = {}, std::string_view xref = {},
             bool brut = false) {
    std::string v;
    v.reserve(valeur.size());
    for (char c : valeur) {
      if (c == '@' && !brut) v += "@@";  // une valeur n'est jamais prise pour un renvoi
      else v += c;
    }
    Debut(niveau, tag, xref);
    bool premiere = true;
    size_t i = 0;
    while (true) {
      size_t fin = v.find_first_of("\r\n", i);
      const std::string_view morceau = std::string_view(v).substr(i, fin == std::string::npos ? std::string::npos : fin - i);
      if (!premiere) Debut(niveau + 1, "CONT", {});
      premiere = false;
      // 200 caractères par ligne au plus : GEDCOM en permet 255 avec niveau et balise. La
      // coupure ne tombe pas à côté d'un blanc : bien des lecteurs ôtent les blancs de fin de
      // ligne, et le blanc serait perdu au retour.
      size_t k = 0;
      do {
        if (k > 0) Debut(niveau + 1, "CONC", {});
        size_t lg = std::min<size_t>(200, morceau.size() - k);
        if (k + lg < morceau.size()) {
          size_t c = lg;
          // Ni entre les deux '@' d'un « @@ » : chaque ligne se relit seule.
          while (c > 1 && (morceau[k + c - 1] == ' ' || morceau[k + c] == ' ' || morceau[k + c - 1] == '@')) --c;
          if (c > 1) lg = c;
        }
        if (lg > 0) {
          Texte += ' ';
          Texte.append(morceau.substr(k, lg));
        }
        Texte += '\n';
        k += lg;
      } while (k < morceau.size());
      if (fin == std::string::npos) break;
      if (v[fin] == '\r' && fin + 1 < v.size() && v[fin + 1] == '\n') ++fin;
      i = fin + 1;
    }
  }
  // Une ligne dont la valeur est un renvoi.
  void Renvoi(int niveau, std::string_view tag, char sorte, long no) {
    Debut(niveau, tag, {});
    Texte += " @";
    Texte += sorte;
    Texte += std::to_string(no) + "@\n";
  }
  std::string Texte;

 private:
  void Debut(int niveau, std::string_view tag, std::string_view xref) {
    Texte += std::to_string(niveau);
    if (!xref.empty()) {
      Texte += " @";
      Texte += xref;
      Texte += "@";
    }
    Texte += ' ';
    Texte += tag;
  }
};

struct TFamille {
  long Mari = 0, Femme = 0;
  std::vector<long> Enfants;
};

class TExport {
 public:
  TExport(TGestFichier& g, TVivantsExport v, TRapportExport& r, TProgression& p)
      : Gest(g), Vivants(v), R(r), Prog(p), Fic(g.FicPersons()), Bdd(g.ModuleBDD()), Cat(g.GetDefChpsCs()) {}

  std::string Lance();

 private:
  bool Existe(long no) const { return no >= 1 && no < long(Exclus.size()) && !Exclus[size_t(no)]; }
  void Familles();
  void Personne(long no);
  void Famille(long id, const TFamille& f);
  // Les événements et champs simples de `p` que `garde` retient, au niveau 1, par leur balise
  // du catalogue ; un fait sans balise est compté, les dates de gestion (DCF, DDMF...) ne
  // sortent pas.
  template <typename F>
  void Faits(TPerson& p, F garde);
  void Evenement(int niveau, const TEvenement::TEnreg& e, TChpCs* chp);
  void Simple(int niveau, const TChpsSimple::TEnreg& c, TChpCs* chp);
  void Note(int niveau, long note);
  std::string Valeur(TChpCs* chp, const std::string& donnee, int n) const;
  bool EstVivant(TPerson& p);

  TGestFichier& Gest;
  TVivantsExport Vivants;
  TRapportExport& R;
  TProgression& Prog;
  TFicPersons* Fic;
  TModuleBDD* Bdd;
  TDefChpsCs* Cat;
  TEcrivain W;
  // Où les faits s'écrivent : le fichier, ou le texte d'une famille mis de côté.
  TEcrivain* Sortie = &W;
  // Les faits de chaque couple, écrits quand la fiche du mari est lue (elle a déjà ses
  // listes) et placés sous la famille à la fin, au lieu de relire le mari.
  std::vector<std::string> FaitsDeFamille;
  // Les sources, illustrations et personnes citées de tous les événements, lues d'un coup.
  std::unique_ptr<TListesDesEvens> Listes;
  std::vector<bool> Exclus;      // supprimées, ou vivantes exclues
  std::vector<bool> Anonymes;
  std::vector<char> Sexes;  // 'M', 'F' ou autre, lu au premier passage : un conjoint n'est pas relu
  std::map<std::pair<long, long>, long> IdFamille;  // (mari, femme) -> numéro de famille
  std::vector<TFamille> Fams;
  std::vector<long> Famc;                          // par personne
  std::unordered_map<long, std::vector<long>> Fams2;  // familles où la personne est conjoint
};

// La règle de la bibliothèque : présumée vivante sauf morte à coup sûr (décès noté, ou fin
// de vie estimée avant aujourd'hui). Sans aucune date, une personne est tenue pour vivante.
bool TExport::EstVivant(TPerson& p) { return p.EstPresumeVivante(); }

// Les familles : un couple, ou le parent seul d'un enfant dont l'autre parent manque.
void TExport::Familles() {
  const long n = Fic->NbPersEffective();
  Famc.assign(size_t(n) + 1, 0);
  auto famille = [&](long mari, long femme) {
    const auto cle = std::make_pair(mari, femme);
    auto it = IdFamille.find(cle);
    if (it != IdFamille.end()) return it->second;
    Fams.push_back({mari, femme, {}});
    const long id = long(Fams.size());
    IdFamille.emplace(cle, id);
    if (mari) Fams2[mari].push_back(id);
    if (femme) Fams2[femme].push_back(id);
    return id;
  };
  TPerson p(Fic);
  for (long no = 1; no <= n; ++no) {
    if (!Existe(no)) continue;
    p.Lecture(no);
    // Chaque couple une fois, vu du plus petit numéro ; l'homme (ou, à défaut, celui qui
    // n'est pas une femme) tient la place du mari.
    for (const TLienConj& c : p.Enreg.Conjoints) {
      if (!Existe(c.No) || c.No <= no) continue;
      const bool qHomme = Sexes[size_t(c.No)] == 'M', qFemme = Sexes[size_t(c.No)] == 'F';
      if (p.EstHomme() || qFemme || (!p.EstFemme() && !qHomme))
        famille(no, c.No);
      else
        famille(c.No, no);
    }
    const long pere = Existe(p.Enreg.Pere.No) ? p.Enreg.Pere.No : 0;
    const long mere = Existe(p.Enreg.Mere.No) ? p.Enreg.Mere.No : 0;
    if (pere || mere) {
      long id;
      if (auto it = IdFamille.find({pere, mere}); it != IdFamille.end()) id = it->second;
      else if (auto it2 = IdFamille.find({mere, pere}); pere && mere && it2 != IdFamille.end()) id = it2->second;
      else id = famille(pere, mere);
      Famc[size_t(no)] = id;
      Fams[size_t(id - 1)].Enfants.push_back(no);
    }
  }
}

std::string TExport::Valeur(TChpCs* chp, const std::string& donnee, int n) const {
  if (!chp || chp->NbMorceaux <= 1) return Trim(donnee);
  return Trim(chp->GetMorceauNo(n, donnee));
}

void TExport::Note(int niveau, long note) {
  TFicNotes* fic = Gest.FicNotes();
  if (!fic || note <= 0 || !fic->BlocEcrit(note)) return;
  TNote n(fic, note);
  std::string texte;
  for (int i = 0; i + 1 < n.Liste.Count(); i += 2) {
    const std::string t = n.RecupNoteTxt(n.Liste[i]);
    if (!t.empty()) texte += (texte.empty() ? "" : "\r\n\r\n") + t;
  }
  if (!texte.empty()) Sortie->Ligne(niveau, "NOTE", texte);
}

void TExport::Evenement(int niveau, const TEvenement::TEnreg& e0, TChpCs* chp) {
  const TEvenement::TEnreg& e = e0;
  const bool premierLibre = chp->NbMorceaux >= 1 && (chp->SousTagGedCom.empty() || chp->SousTagGedCom[0].empty());
  Sortie->Ligne(niveau, chp->TagGedCom, premierLibre ? Valeur(chp, e.Donnee, 1) : std::string());
  const std::string date = DateRQVersGedcom(e.Date);
  if (!date.empty()) Sortie->Ligne(niveau + 1, "DATE", date, {}, true);
  if (e.Lieu > 0 || !e.LieuDit.empty()) {
    TLieuGedcom l;
    if (e.Lieu > 0 && Gest.FicLie()) {
      TFicheDupli f(Gest.FicLie(), e.Lieu, true);
      f.Elt.GetVilleRegionPays(l.Commune, l.Region, l.Pays);
      l.Code = f.Elt.Code;
    }
    l.LieuDit = e.LieuDit;
    Sortie->Ligne(niveau + 1, "PLAC", ComposeLieuGedcom(l));
  }
  for (int n = premierLibre ? 2 : 1; n <= chp->NbMorceaux && size_t(n) <= chp->SousTagGedCom.size(); ++n) {
    const std::string& tag = chp->SousTagGedCom[size_t(n - 1)];
    const std::string v = Valeur(chp, e.Donnee, n);
    if (!tag.empty() && !v.empty()) Sortie->Ligne(niveau + 1, tag, v);
  }
  if (e.No > 0 && Listes) {
    for (const TSource& s : Listes->Sources(e.No)) {
      if (s.No == 0) break;  // la liste s'arrête à sa première place vide
      if (!s.Enreg.Descriptif.empty()) Sortie->Ligne(niveau + 1, "SOUR", s.Enreg.Descriptif);
    }
    for (const TIllustration& ill : Listes->Illustrations(e.No)) {
      if (ill.No == 0) break;
      if (ill.Enreg.Chemin.empty()) continue;
      Sortie->Ligne(niveau + 1, "OBJE");
      Sortie->Ligne(niveau + 2, "FILE", ill.Enreg.Chemin);
    }
    for (const TPersAssociee& pa : Listes->PersAssociees(e.No)) {
      if (pa.Vide()) break;
      if (!Existe(pa.Lien.No)) continue;
      // GEDCOM 5.5.1 n'a d'ASSO que sous la personne : la personne citée dans un événement
      // s'écrit par une balise propre, que l'import relit au même événement.
      Sortie->Renvoi(niveau + 1, "_ASSO", 'I', pa.Lien.No);
      std::string qualite;
      if (pa.LienQualite > 0 && Gest.FicQua()) {
        TFicheDupli f(Gest.FicQua(), pa.LienQualite, true);
        std::string region, pays;
        f.Elt.GetVilleRegionPays(qualite, region, pays);
      }
      if (!qualite.empty()) Sortie->Ligne(niveau + 2, "RELA", qualite);
    }
  }
  Note(niveau + 1, e.Note);
  ++R.Evenements;
}

void TExport::Simple(int niveau, const TChpsSimple::TEnreg& c, TChpCs* chp) {
  Sortie->Ligne(niveau, chp->TagGedCom, Trim(c.Donnee));
  ++R.Evenements;
}

void TExport::Personne(long no) {
  TPerson p(Fic);
  p.Lecture(no, true);
  p.ChargeListes();
  W.Ligne(0, "INDI", {}, "I" + std::to_string(no));
  const bool anonyme = Anonymes[size_t(no)];
  if (anonyme) {
    W.Ligne(1, "NAME", "Vivant //");
  } else {
    std::string prenoms = NoCotePrenomUsuel(p.Enreg.Prenoms, p.Enreg.PrenomUsuel);
    const std::vector<std::string_view> noms = DecoupeElts(p.Enreg.Nom, ';');
    const std::string premier = noms.empty() ? std::string() : Trim(noms[0]);
    W.Ligne(1, "NAME", Trim(prenoms + " /" + premier + "/"));
    for (size_t i = 1; i < noms.size(); ++i)
      if (!Trim(noms[i]).empty()) W.Ligne(1, "NAME", "/" + Trim(noms[i]) + "/");
  }
  // Une personne anonymisée ne garde que sa place dans les familles : ni nom, ni sexe, ni faits.
  if (!anonyme) W.Ligne(1, "SEX", p.EstHomme() ? "M" : p.EstFemme() ? "F" : "U");
  if (!anonyme) {
    // Les faits de couple vont à la famille.
    Faits(p, [no](const auto& e) { return !(e.NoPersB != 0 && e.NoConjoint(no) != 0); });
    Note(1, p.Enreg.Note);
  }
  // Les faits des couples dont elle tient la place du mari, pour la famille.
  if (auto it = Fams2.find(no); it != Fams2.end())
    for (const long id : it->second) {
      const TFamille& f = Fams[size_t(id - 1)];
      if (f.Mari != no || !f.Femme || Anonymes[size_t(f.Mari)] || Anonymes[size_t(f.Femme)]) continue;
      TEcrivain couple;
      Sortie = &couple;
      Faits(p, [&f](const auto& e) { return e.IsCouple(f.Mari, f.Femme); });
      Sortie = &W;
      FaitsDeFamille[size_t(id - 1)] = std::move(couple.Texte);
    }
  if (const long f = Famc[size_t(no)]) W.Renvoi(1, "FAMC", 'F', f);
  if (auto it = Fams2.find(no); it != Fams2.end())
    for (const long f : it->second) W.Renvoi(1, "FAMS", 'F', f);
  ++R.Personnes;
}

template <typename F>
void TExport::Faits(TPerson& p, F garde) {
  if (p.Evens())
    for (const TEvenementTV& ev : *p.Evens()) {
      if (!garde(ev.Enreg)) continue;
      TChpCs* chp = Cat ? Cat->RechercheChampsInternePtr(ev.Enreg.Libelle) : nullptr;
      if (!chp || chp->TagGedCom.empty()) {
        ++R.SansBalise;
        continue;
      }
      Evenement(1, ev.Enreg, chp);
    }
  if (p.Chps())
    for (const TChpsSimpleTV& c : *p.Chps()) {
      if (!garde(c.Enreg)) continue;
      TChpCs* chp = Cat ? Cat->RechercheChampsInternePtr(c.Enreg.Libelle) : nullptr;
      if (!chp || chp->TagGedCom.empty() || chp->IsDateGestSys()) {
        if (!chp || !chp->IsDateGestSys()) ++R.SansBalise;
        continue;
      }
      Simple(1, c.Enreg, chp);
    }
}

void TExport::Famille(long id, const TFamille& f) {
  W.Ligne(0, "FAM", {}, "F" + std::to_string(id));
  if (f.Mari) W.Renvoi(1, "HUSB", 'I', f.Mari);
  if (f.Femme) W.Renvoi(1, "WIFE", 'I', f.Femme);
  W.Texte += FaitsDeFamille[size_t(id - 1)];
  std::string().swap(FaitsDeFamille[size_t(id - 1)]);
  // Les enfants dans l'ordre de la table du père (ou de la mère), qui est celui du dossier.
  std::vector<long> ordre;
  if (const long parent = f.Mari ? f.Mari : f.Femme) {
    TPerson p(Fic, parent);
    for (const TLienPers& e : p.Enreg.Enfants) {
      const long enfant = e.No;  // copié : le champ d'un enregistrement tassé n'est pas aligné
      if (enfant != 0 && std::find(f.Enfants.begin(), f.Enfants.end(), enfant) != f.Enfants.end()) ordre.push_back(enfant);
    }
  }
  for (const long e : f.Enfants)
    if (std::find(ordre.begin(), ordre.end(), e) == ordre.end()) ordre.push_back(e);
  for (const long e : ordre) W.Renvoi(1, "CHIL", 'I', e);
  ++R.Familles;
}

std::string TExport::Lance() {
  // Un seul état de la base lu d'un bout à l'autre, sans reprendre son verrou à chaque requête.
  const TLectureSuivie lecture(Bdd);
  const long n = Fic ? Fic->NbPersEffective() : 0;
  Exclus.assign(size_t(n) + 1, false);
  Anonymes.assign(size_t(n) + 1, false);
  Sexes.assign(size_t(n) + 1, 0);
  Exclus[0] = true;
  {
    TPerson p(Fic);
    for (long no = 1; no <= n; ++no) {
      p.Lecture(no);
      Sexes[size_t(no)] = p.EstHomme() ? 'M' : p.EstFemme() ? 'F' : '?';
      if (p.FicheSupprimee()) {
        Exclus[size_t(no)] = true;
        continue;
      }
      if (Vivants != TVivantsExport::Tous) {
        p.Lecture(no, true);
        if (EstVivant(p)) {
          ++R.Vivants;
          if (Vivants == TVivantsExport::Exclure) Exclus[size_t(no)] = true;
          else Anonymes[size_t(no)] = true;
        }
      }
    }
  }
  Familles();
  if (Bdd) Listes = std::make_unique<TListesDesEvens>(Bdd);
  FaitsDeFamille.assign(Fams.size(), std::string());
  W.Ligne(0, "HEAD");
  W.Ligne(1, "SOUR", "RQBASE");
  W.Ligne(2, "NAME", "rqbase");
  W.Renvoi(1, "SUBM", 'U', 1);  // l'auteur du fichier, que 5.5.1 demande à l'en-tête
  W.Ligne(1, "GEDC");
  W.Ligne(2, "VERS", "5.5.1");
  W.Ligne(2, "FORM", "LINEAGE-LINKED");
  W.Ligne(1, "CHAR", "UTF-8");
  W.Ligne(1, "LANG", "French");
  W.Ligne(1, "PLAC");
  W.Ligne(2, "FORM", "Commune, Code, Département, Région, Pays, Subdivision");
  Prog.Titre("Export GEDCOM");
  Prog.Maximum(n);
  for (long no = 1; no <= n; ++no) {
    if (Existe(no)) Personne(no);
    if (no % 1000 == 0) Prog.Position(no);
  }
  for (size_t i = 0; i < Fams.size(); ++i) Famille(long(i + 1), Fams[i]);
  W.Ligne(0, "SUBM", {}, "U1");
  W.Ligne(1, "NAME", "rqbase");
  W.Ligne(0, "TRLR");
  return VersUtf8(W.Texte);
}

}  // namespace

std::string ExporteGedcom(TGestFichier& gest, TVivantsExport vivants, TRapportExport& rapport,
                          TProgression* progression) {
  rapport = TRapportExport();
  TExport e(gest, vivants, rapport, progression ? *progression : ProgressionMuette());
  return e.Lance();
}

}  // namespace rqbase
