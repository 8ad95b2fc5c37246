#include "rqbase/gedcom/import_gedcom.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include "rqbase/dossier/gest_fic.h"
#include "rqbase/fields/chp_cs.h"
#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/gedcom/arbre.h"
#include "rqbase/gedcom/dates_gedcom.h"
#include "rqbase/gedcom/lecteur_lignes.h"
#include "rqbase/gedcom/lieux_gedcom.h"
#include "rqbase/index/index_personnes.h"
#include "rqbase/index/prenom_usuel.h"
#include "rqbase/person/estimation_personne.h"
#include "rqbase/person/liste_evenements.h"
#include "rqbase/person/voisins_personne.h"
#include "rqbase/notes/note.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/notes/fic_notes.h"
#include "rqbase/places/gestduplicat.h"
#include "rqbase/platform/fichier.h"
#include "rqbase/storage/fic_ext_pers.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/progression.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/evenement.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/erreur.h"

namespace rqbase {

namespace {

constexpr const char* kTitreNote = "Générale";
constexpr const char* kTypeSource = "Générale";

// Un libellé comparé sans casse ni accents ni blancs autour.
std::string Cle(std::string_view s) {
  std::string r;
  for (unsigned char c : Trim(s)) r += static_cast<char>(MajusculeCp1252(SansAccentCp1252(c)));
  return r;
}

// a, b joints par ", " (l'un vide : l'autre seul).
std::string Joint(std::string_view a, std::string_view b) {
  return std::string(a) + Virgule(a, b, true) + std::string(b);
}

// Ce que les familles donnent à une personne avant qu'elle soit écrite.
struct TPers {
  uint32_t Ligne = 0;
  int32_t Pere = -1, Mere = -1;  // rangs des personnes du fichier, -1 aucun
  char Sexe = '?';
  std::vector<int32_t> Conjoints;
  std::vector<int32_t> Enfants;
  std::vector<int32_t> Familles;  // familles où elle est conjoint, pour les faits du couple
};

// Les années de l'index des noms d'une personne écrite, quand elle avait naissance et décès
// notés exactement : la reconstruction de l'index n'a alors ni à relire ses faits ni à
// l'estimer.
struct TAnneesIndex {
  int16_t Min = 0, Max = 0;
  bool Connues = false;
};

struct TFam {
  uint32_t Ligne = 0;
  int32_t Mari = -1, Femme = -1;
  std::vector<int32_t> Enfants;
  std::vector<uint32_t> LignesEnfants;  // la ligne CHIL (ou FAMC) de chaque enfant
  bool CoupleLie = false;
  // Les faits du couple, faits au premier conjoint écrit et repris au second.
  std::vector<TEvenement::TEnreg> Evens;
  std::vector<TChpsSimple::TEnreg> Chps;
  std::vector<uint32_t> LignesEvens, LignesChps;  // leurs lignes, pour le rapport
  int Ecrits = 0;
};

class TImport {
 public:
  TImport(TGestFichier& g, const TArbreGedcom& a, TRapportImport& r, TProgression& p)
      : Gest(g), A(a), R(r), Prog(p), Fic(g.FicPersons()), Bdd(g.ModuleBDD()), Cat(g.GetDefChpsCs()) {
    if (Cat)
      for (const auto& c : Cat->Champs)
        if (!c->TagGedCom.empty() && (c->IsEvenement() || c->IsSimple())) ParTag.emplace(c->TagGedCom, c.get());
  }

  void Lance();
  // Appelé quand plus rien ne lit le fichier (toutes les personnes écrites, tout ce qui est à
  // dire dit), avant l'index des noms : qui possède les lignes et l'arbre peut les rendre.
  std::function<void()> FichierLu;

 private:
  void Avertit(uint32_t i, std::string raison) {
    R.Avertit(A.Numero(i), A.Lignes().Originale(i), std::move(raison));
  }
  // Toutes les sous-lignes de i, dites non importées avec la même raison.
  void AvertitTout(uint32_t i, const std::string& raison) {
    const uint32_t fin = A.Fin(i);
    for (uint32_t j = i; j < fin; ++j) Avertit(j, raison);
  }
  // Les sous-lignes de i dont la balise n'est pas dans `lues`, dites non importées (elles et
  // leurs propres sous-lignes).
  void AvertitNonLues(uint32_t i, std::initializer_list<std::string_view> lues, const std::string& raison) {
    A.Enfants(i, [&](uint32_t j) {
      if (std::find(lues.begin(), lues.end(), A.Tag(j)) == lues.end()) AvertitTout(j, raison);
    });
  }
  // Un enregistrement partagé (SOUR, OBJE, NOTE) cité pour la première fois : ce qui n'en est
  // pas lu est dit une fois, et non à chaque citation.
  bool PremiereCitation(int64_t l) {
    if (Cites[size_t(l)]) return false;
    Cites[size_t(l)] = true;
    return true;
  }
  int32_t Personne(uint32_t i, std::string_view valeur);
  int32_t Famille(uint32_t i, std::string_view valeur);
  void LitFamilles();
  void ControleFamc();
  void LieFamilles();
  void AvertitFaitsSansCouple(const TFam& f);
  void RetireCycles();
  void EcritPersonne(int32_t k);
  void LitNom(uint32_t i, TPerson& p, bool premier);
  TChpCs* ChampDe(uint32_t i, bool couple);
  bool FaitEvenement(uint32_t i, TChpCs* chp, long noA, long noB, TEvenement::TEnreg& e);
  void FaitSimple(uint32_t i, TChpCs* chp, long noA, long noB, TChpsSimple::TEnreg& c);
  long Lieu(std::string_view plac, std::string_view forme, uint32_t i, std::string& lieuDit);
  std::string TexteNote(uint32_t i);
  // La note écrite (0 sans texte) ; `i` est la ligne dite si elle doit être coupée.
  long EcritNote(const std::string& texte, uint32_t i);
  void AjouteSource(uint32_t i, TEvenement::TEnreg& e);
  void AjouteMedia(uint32_t i, TEvenement::TEnreg& e);
  void AjouteCitee(uint32_t i, TEvenement::TEnreg& e);
  long NoPers(int32_t k) const { return Base + k + 1; }

  TGestFichier& Gest;
  const TArbreGedcom& A;
  TRapportImport& R;
  TProgression& Prog;
  TFicPersons* Fic;
  TModuleBDD* Bdd;
  TDefChpsCs* Cat;
  std::unordered_map<std::string, TChpCs*> ParTag;
  std::vector<TPers> Pers;
  std::vector<TFam> Fams;
  std::unordered_map<uint32_t, int32_t> PersDeLigne, FamDeLigne;
  std::unordered_map<std::string, long> Lieux;
  std::vector<bool> Cites;  // enregistrements SOUR, OBJE, NOTE cités au moins une fois
  std::vector<TAnneesIndex> Annees;  // par personne du fichier
  long Base = 0;
  std::string FormeLieux;  // la PLAC FORM de l'en-tête, vide sans elle
  std::string AuteurEnTete;  // le renvoi SUBM de l'en-tête, vide sans lui
};

int32_t TImport::Personne(uint32_t i, std::string_view valeur) {
  const std::string_view x = TArbreGedcom::Pointeur(valeur);
  if (x == "VOID") return -1;  // GEDCOM 7 : « personne », dit exprès
  const int64_t l = A.Cherche("INDI", x);
  if (l < 0) {
    Avertit(i, x.empty() ? "renvoi illisible vers une personne" : "renvoi vers une personne absente du fichier");
    return -1;
  }
  return PersDeLigne.at(static_cast<uint32_t>(l));
}

int32_t TImport::Famille(uint32_t i, std::string_view valeur) {
  const std::string_view x = TArbreGedcom::Pointeur(valeur);
  const int64_t l = A.Cherche("FAM", x);
  if (l < 0) {
    Avertit(i, x.empty() ? "renvoi illisible vers une famille" : "renvoi vers une famille absente du fichier");
    return -1;
  }
  return FamDeLigne.at(static_cast<uint32_t>(l));
}

void TImport::LitFamilles() {
  for (TFam& f : Fams) {
    A.Enfants(f.Ligne, [&](uint32_t j) {
      const std::string_view tag = A.Tag(j);
      if (tag == "HUSB" || tag == "WIFE" || tag == "CHIL") AvertitNonLues(j, {}, "précision du lien de famille non importée");
      if (tag == "HUSB" || tag == "WIFE") {
        const int32_t k = Personne(j, A.Valeur(j));
        if (k < 0) return;
        int32_t& place = tag == "HUSB" ? f.Mari : f.Femme;
        if (place >= 0 && place != k)
          Avertit(j, "deuxième conjoint de même place dans la famille : le premier est gardé");
        else
          place = k;
      } else if (tag == "CHIL") {
        const int32_t k = Personne(j, A.Valeur(j));
        if (k < 0) return;
        if (std::find(f.Enfants.begin(), f.Enfants.end(), k) != f.Enfants.end()) {
          Avertit(j, "enfant cité deux fois dans la famille");
        } else {
          f.Enfants.push_back(k);
          f.LignesEnfants.push_back(j);
        }
      }
    });
  }
}

// Les renvois FAMS et FAMC des personnes, comparés à leurs familles : ce qui manque à la
// famille y est ajouté (et dit), puisque les deux côtés décrivent le même lien.
void TImport::ControleFamc() {
  for (size_t k = 0; k < Pers.size(); ++k) {
    const auto pk = static_cast<int32_t>(k);
    A.Enfants(Pers[k].Ligne, [&](uint32_t j) {
      const std::string_view tag = A.Tag(j);
      if (tag != "FAMS" && tag != "FAMC") return;
      const int32_t f = Famille(j, A.Valeur(j));
      if (f < 0) return;
      TFam& fam = Fams[size_t(f)];
      if (tag == "FAMC") {
        if (std::find(fam.Enfants.begin(), fam.Enfants.end(), pk) == fam.Enfants.end()) {
          fam.Enfants.push_back(pk);
          fam.LignesEnfants.push_back(j);
          Avertit(j, "la famille ne citait pas cet enfant : lien complété d'après FAMC");
        }
        return;
      }
      if (fam.Mari == pk || fam.Femme == pk) return;
      int32_t* place = nullptr;
      if (Pers[k].Sexe == 'F' && fam.Femme < 0) place = &fam.Femme;
      else if (Pers[k].Sexe != 'F' && fam.Mari < 0) place = &fam.Mari;
      else if (fam.Mari < 0) place = &fam.Mari;
      else if (fam.Femme < 0) place = &fam.Femme;
      if (place) {
        *place = pk;
        Avertit(j, "la famille ne citait pas ce conjoint : lien complété d'après FAMS");
      } else {
        Avertit(j, "la famille a déjà ses deux conjoints : renvoi FAMS laissé");
      }
    });
  }
}

void TImport::LieFamilles() {
  for (TFam& f : Fams) {
    if (f.Mari >= 0 && f.Mari == f.Femme) {
      Avertit(f.Ligne, "la même personne est les deux conjoints de la famille : seconde place laissée");
      f.Femme = -1;
    }
    if (f.Mari < 0 && f.Femme < 0 && f.Enfants.empty()) {
      Avertit(f.Ligne, "famille sans membre : non importée");
      AvertitFaitsSansCouple(f);
      continue;
    }
    if (f.Mari >= 0 && f.Femme >= 0) {
      TPers& m = Pers[size_t(f.Mari)];
      TPers& w = Pers[size_t(f.Femme)];
      const bool deja = std::find(m.Conjoints.begin(), m.Conjoints.end(), f.Femme) != m.Conjoints.end();
      if (deja) {
        f.CoupleLie = true;
      } else if (int(m.Conjoints.size()) >= TPerson::NbConjoints || int(w.Conjoints.size()) >= TPerson::NbConjoints) {
        Avertit(f.Ligne, "151e conjoint : le couple n'est pas écrit, les enfants ne reçoivent que leur père");
        f.Femme = -1;
      } else {
        m.Conjoints.push_back(f.Femme);
        w.Conjoints.push_back(f.Mari);
        f.CoupleLie = true;
      }
    }
    bool lienEcrit = f.CoupleLie;
    for (size_t n = 0; n < f.Enfants.size(); ++n) {
      const int32_t e = f.Enfants[n];
      TPers& enfant = Pers[size_t(e)];
      if (e == f.Mari || e == f.Femme) {
        Avertit(f.Ligne, "une personne est à la fois parent et enfant dans la famille : lien laissé");
        continue;
      }
      if (enfant.Pere >= 0 || enfant.Mere >= 0) {
        Avertit(enfant.Ligne, "enfant de deux familles : seuls les parents de la première sont écrits");
        continue;
      }
      for (const bool pere : {true, false}) {
        const int32_t parent = pere ? f.Mari : f.Femme;
        if (parent < 0) continue;
        TPers& p = Pers[size_t(parent)];
        if (int(p.Enfants.size()) >= TPerson::NbEnfants) {
          std::string nom(A.ValeurEnfant(enfant.Ligne, "NAME"));
          nom.erase(std::remove(nom.begin(), nom.end(), '/'), nom.end());
          Avertit(f.LignesEnfants[n], std::string("151e enfant ") + (pere ? "du père" : "de la mère") + " : lien avec " +
                                          (Trim(nom).empty() ? "cet enfant" : Trim(nom)) + " non écrit");
          continue;
        }
        p.Enfants.push_back(e);
        (pere ? enfant.Pere : enfant.Mere) = parent;
        lienEcrit = true;
      }
    }
    // Une famille compte au rapport si elle a donné au moins un lien.
    if (lienEcrit) ++R.Familles;
    else Avertit(f.Ligne, "famille d'un seul membre : aucun lien à écrire");
    if (f.CoupleLie) {
      Pers[size_t(f.Mari)].Familles.push_back(int32_t(&f - Fams.data()));
      Pers[size_t(f.Femme)].Familles.push_back(int32_t(&f - Fams.data()));
    } else {
      AvertitFaitsSansCouple(f);
    }
  }
}

// Les faits d'une famille vont au couple : sans couple écrit (un seul conjoint, 151e
// conjoint), ils n'ont où aller.
void TImport::AvertitFaitsSansCouple(const TFam& f) {
  AvertitNonLues(f.Ligne, {"HUSB", "WIFE", "CHIL"}, "fait d'une famille dont le couple n'est pas écrit : non importé");
}

// Un parent qui descend de son enfant ferait boucler toute remontée : le lien qui ferme le
// cycle n'est pas écrit. Parcours en profondeur sans récursion, linéaire.
void TImport::RetireCycles() {
  const size_t n = Pers.size();
  std::vector<uint8_t> etat(n, 0);  // 0 jamais vu, 1 en cours, 2 fini
  std::vector<std::pair<int32_t, int>> pile;
  for (size_t depart = 0; depart < n; ++depart) {
    if (etat[depart]) continue;
    pile.emplace_back(int32_t(depart), 0);
    etat[depart] = 1;
    while (!pile.empty()) {
      auto& [k, etape] = pile.back();
      if (etape == 2) {
        etat[size_t(k)] = 2;
        pile.pop_back();
        continue;
      }
      const bool pere = etape == 0;
      ++etape;
      TPers& enfant = Pers[size_t(k)];
      const int32_t parent = pere ? enfant.Pere : enfant.Mere;
      if (parent < 0) continue;
      if (etat[size_t(parent)] == 1) {
        Avertit(enfant.Ligne, "cycle de parents : la personne descendrait d'elle-même, lien de parent non écrit");
        auto& ef = Pers[size_t(parent)].Enfants;
        ef.erase(std::remove(ef.begin(), ef.end(), k), ef.end());
        (pere ? enfant.Pere : enfant.Mere) = -1;
      } else if (etat[size_t(parent)] == 0) {
        etat[size_t(parent)] = 1;
        pile.emplace_back(parent, 0);
      }
    }
  }
}

TChpCs* TImport::ChampDe(uint32_t i, bool couple) {
  const std::string tag(A.Tag(i));
  TChpCs* chp = nullptr;
  if (tag == "EVEN" || tag == "FACT") {
    // Le TYPE nomme le champ ; un événement sans champ de ce nom va au champ générique.
    const std::string type = Cle(A.ValeurEnfant(i, "TYPE"));
    if (Cat && !type.empty())
      for (const auto& c : Cat->Champs)
        if ((c->IsEvenement() || c->IsSimple()) && (Cle(c->LibelleEcran) == type || Cle(c->LibelleInterne) == type)) {
          chp = c.get();
          break;
        }
    if (!chp && tag == "EVEN" && Cat) chp = Cat->RechercheChampsInternePtr("EVENEMENT");
  } else if (const auto it = ParTag.find(tag); it != ParTag.end()) {
    chp = it->second;
  }
  if (!chp) return nullptr;
  if (chp->IsLiaisonCouple() != couple) return nullptr;
  return chp;
}

std::string TImport::TexteNote(uint32_t i) {
  const std::string_view v = A.Valeur(i);
  const std::string_view x = TArbreGedcom::Pointeur(v);
  AvertitNonLues(i, {}, "précision de la note non importée");
  if (x.empty()) return std::string(v);
  const int64_t l = A.Cherche("NOTE", x);
  if (l < 0) {
    Avertit(i, "renvoi vers une note absente du fichier");
    return {};
  }
  if (PremiereCitation(l)) AvertitNonLues(uint32_t(l), {}, "précision de la note non importée");
  return std::string(A.Valeur(uint32_t(l)));
}

long TImport::EcritNote(const std::string& texte, uint32_t i) {
  TFicNotes* fic = Gest.FicNotes();
  if (!fic || texte.empty()) return 0;
  TNote note(fic, 0);
  const size_t place = size_t(TFicNotes::BlocsMaxParNote) * 507;
  if (texte.size() > place) Avertit(i, "note trop longue pour le fichier des notes : coupée");
  std::string copie = texte.substr(0, place);
  note.ModifNote(kTitreNote, copie);
  if (note.NoFiche > 0) ++R.Notes;
  return note.NoFiche;
}

long TImport::Lieu(std::string_view plac, std::string_view forme, uint32_t i, std::string& lieuDit) {
  TLieuGedcom l = DecoupeLieuGedcom(plac, forme);
  lieuDit = l.LieuDit;
  if (lieuDit.size() > kLgLieuDit - 1) Avertit(i, "lieu-dit coupé à 50 caractères");
  if (l.Commune.empty() && l.Code.empty() && l.Region.empty() && l.Pays.empty()) return 0;
  if (l.Code.size() > 10) Avertit(i, "code du lieu coupé à 10 caractères");
  if (l.Pays.size() > 50) Avertit(i, "pays coupé à 50 caractères");
  const std::string cle = l.Commune + '\t' + l.Code + '\t' + l.Region + '\t' + l.Pays;
  if (const auto it = Lieux.find(cle); it != Lieux.end()) return it->second;
  TFicDupli* lie = Gest.FicLie();
  if (!lie) return 0;
  TEltDupChn elt(0, l.Commune.c_str(), l.Code.c_str(), l.Region.c_str(), l.Pays.c_str());
  const long avant = lie->NbFiches();
  const long no = lie->Cherche(&elt, true);
  if (lie->NbFiches() > avant) ++R.Lieux;
  Lieux.emplace(cle, no);
  return no;
}

void TImport::AjouteSource(uint32_t i, TEvenement::TEnreg& e) {
  std::string texte(A.Valeur(i));
  if (const std::string_view x = TArbreGedcom::Pointeur(texte); !x.empty()) {
    const int64_t l = A.Cherche("SOUR", x);
    if (l < 0) {
      AvertitTout(i, "renvoi vers une source absente du fichier");
      return;
    }
    const auto s = uint32_t(l);
    texte = std::string(A.ValeurEnfant(s, "TITL"));
    const bool parAbbr = texte.empty();
    if (parAbbr) texte = std::string(A.ValeurEnfant(s, "ABBR"));
    if (texte.empty()) texte = std::string(A.Valeur(s));
    if (const std::string_view auteur = A.ValeurEnfant(s, "AUTH"); !auteur.empty()) texte = Joint(texte, auteur);
    // Le dossier garde d'une source son descriptif : titre (ou abrégé), auteur, page.
    if (PremiereCitation(l)) {
      if (parAbbr) AvertitNonLues(s, {"ABBR", "AUTH"}, "partie de la source non importée (le dossier garde titre, auteur et page)");
      else AvertitNonLues(s, {"TITL", "AUTH"}, "partie de la source non importée (le dossier garde titre, auteur et page)");
    }
  }
  if (const std::string_view page = A.ValeurEnfant(i, "PAGE"); !page.empty()) texte = Joint(texte, page);
  texte = Trim(texte);
  if (texte.empty()) {
    AvertitTout(i, "source vide");
    return;
  }
  if (e.CountSource() >= kNbSourcesEven) {
    AvertitTout(i, "51e source de l'événement : non importée");
    return;
  }
  if (texte.size() > kLgDescriptifSource) Avertit(i, "source coupée à 300 caractères");
  AvertitNonLues(i, {"PAGE"}, "précision de la citation de source non importée");
  TSource s(Bdd);
  s.SetType(kTypeSource);
  s.SetDescriptif(texte);
  s.NoEven = e.No;
  if (!Bdd->EnregistrementSource(&s) || s.No <= 0) return;
  e.SourcesChargees = true;
  e.AjoutSource(s.No);
  ++R.Sources;
}

// Le chemin d'une illustration, relatif au dossier et qui n'en sort jamais : un chemin absolu
// ou qui remonte ne garde que le nom du fichier, sous Images/.
std::string CheminDansDossier(std::string chemin) {
  std::replace(chemin.begin(), chemin.end(), '\\', '/');
  const bool absolu = !chemin.empty() && (chemin[0] == '/' || (chemin.size() > 1 && chemin[1] == ':'));
  bool remonte = false;
  for (std::string_view part : DecoupeElts(chemin, '/'))
    if (part == "..") remonte = true;
  if (absolu || remonte || chemin.find("//") != std::string::npos) {
    const size_t p = chemin.rfind('/');
    chemin = "Images/" + chemin.substr(p == std::string::npos ? 0 : p + 1);
  }
  while (chemin.rfind("./", 0) == 0) chemin.erase(0, 2);
  return chemin;
}

void TImport::AjouteMedia(uint32_t i, TEvenement::TEnreg& e) {
  uint32_t obje = i;
  bool dire = true;  // ce qui n'est pas lu du média est à dire (une fois par enregistrement)
  if (const std::string_view x = TArbreGedcom::Pointeur(A.Valeur(i)); !x.empty()) {
    const int64_t l = A.Cherche("OBJE", x);
    if (l < 0) {
      AvertitTout(i, "renvoi vers un média absent du fichier");
      return;
    }
    AvertitNonLues(i, {}, "précision du média non importée");
    obje = uint32_t(l);
    dire = PremiereCitation(l);
  }
  const std::string_view fichier = A.ValeurEnfant(obje, "FILE");
  if (fichier.empty()) {
    AvertitTout(i, "média sans fichier (FILE) : non importé");
    if (dire && obje != i) AvertitNonLues(obje, {}, "média sans fichier (FILE) : non importé");
    return;
  }
  if (dire) {
    // Du média, le dossier garde le chemin du premier fichier.
    bool premier = true;
    A.Enfants(obje, [&](uint32_t j) {
      if (A.Tag(j) == "FILE" && premier && A.Valeur(j) == fichier) {
        premier = false;
        AvertitNonLues(j, {}, "précision du média non importée (le dossier garde son chemin)");
      } else {
        AvertitTout(j, A.Tag(j) == "FILE" ? "fichier de plus du média : non importé"
                                          : "précision du média non importée (le dossier garde son chemin)");
      }
    });
  }
  const std::string chemin = CheminDansDossier(std::string(fichier));
  if (chemin.empty() || chemin.size() > kLgChemin) {
    AvertitTout(i, "chemin du média vide ou trop long : non importé");
    return;
  }
  if (e.CountIllustration() >= kNbIllustrationsEven) {
    AvertitTout(i, "51e média de l'événement : non importé");
    return;
  }
  if (chemin != fichier) Avertit(i, "chemin du média ramené dans le dossier : " + chemin);
  TIllustration ill(Bdd);
  ill.SetChemin(chemin);
  ill.NoEven = e.No;
  if (!Bdd->EnregistrementIllustration(&ill) || ill.No <= 0) return;
  e.IllustrationsChargees = true;
  e.AjoutIllustration(ill.No);
  ++R.Medias;
}

void TImport::AjouteCitee(uint32_t i, TEvenement::TEnreg& e) {
  const int32_t k = Personne(i, A.Valeur(i));
  if (k < 0) {
    AvertitNonLues(i, {}, "précision d'une personne citée non importée");
    return;
  }
  for (int c = 0; c < e.CountPersAssociee(); ++c)
    if (e.PersAssociees[c].Lien.No == NoPers(k)) {
      AvertitTout(i, "personne déjà citée dans l'événement : non importée");
      return;
    }
  std::string qualite(A.ValeurEnfant(i, "RELA"));
  if (qualite.empty()) qualite = std::string(A.ValeurEnfant(i, "ROLE"));
  if (Cle(qualite) == "WITN" || Cle(qualite) == "WITNESS") qualite = "Témoin";
  TPersAssociee pa;
  pa.Lien.No = static_cast<int32_t>(NoPers(k));
  if (!qualite.empty() && Gest.FicQua()) {
    TEltDupChn elt(0, qualite.c_str());
    pa.LienQualite = static_cast<int32_t>(Gest.FicQua()->Cherche(&elt, true));
  }
  if (e.CountPersAssociee() >= kNbPersAssocieesEven) {
    AvertitTout(i, "51e personne citée : non importée");
    return;
  }
  AvertitNonLues(i, {"RELA", "ROLE"}, "précision d'une personne citée non importée (le dossier garde sa qualité)");
  e.PersAssocieesChargees = true;
  e.AjoutPersAssociee(pa);
}

// Un événement ou un fait de couple ; false si rien n'en reste.
bool TImport::FaitEvenement(uint32_t i, TChpCs* chp, long noA, long noB, TEvenement::TEnreg& e) {
  e.Raz();
  e.SetLibelle(chp->LibelleInterne);
  e.NoPersA = noA;
  e.NoPersB = noB;
  e.No = Bdd->ReturnNewNumEven();
  std::string donnee;
  const std::string_view valeur = A.Valeur(i);
  const bool generique = (A.Tag(i) == "EVEN" || A.Tag(i) == "FACT") && Cle(chp->LibelleEcran) != Cle(A.ValeurEnfant(i, "TYPE")) &&
                         Cle(chp->LibelleInterne) != Cle(A.ValeurEnfant(i, "TYPE"));
  auto morceau = [&](int n, std::string_view texte, uint32_t ligne) {
    if (chp->NbMorceaux <= 0) {
      Avertit(ligne, "le champ n'a pas de place pour une valeur : laissée");
      return;
    }
    std::string actuel = Trim(chp->GetMorceauNo(n, donnee));
    if (!actuel.empty()) {
      Avertit(ligne, "la place de cette valeur est déjà prise : laissée");
      return;
    }
    chp->SetMorceauNo(n, std::string(texte), donnee, int(kLgDonnee));
    // Le morceau coupe à sa largeur (la valeur d'un champ d'un seul morceau, à 100 caractères)
    // sans le dire : ce qui en est resté se compare à ce qui était donné.
    const std::string garde = Trim(chp->NbMorceaux <= 1 ? donnee : chp->GetMorceauNo(n, donnee));
    if (garde != Trim(texte))
      Avertit(ligne, "valeur coupée à " + std::to_string(garde.size()) + " caractères (la place du champ)");
  };
  if (!valeur.empty() && valeur != "Y" && valeur != "y") {
    if (chp->NbMorceaux >= 1 && (chp->SousTagGedCom.empty() || chp->SousTagGedCom[0].empty()))
      morceau(1, valeur, i);
    else
      Avertit(i, "valeur sans morceau du champ pour la recevoir : laissée");
  }
  std::string note;
  bool dateLue = false, lieuLu = false;
  A.Enfants(i, [&](uint32_t j) {
    const std::string tag(A.Tag(j));
    const std::string_view v = A.Valeur(j);
    if (tag == "DATE" && Trim(v).empty()) {
      AvertitTout(j, "date vide : laissée");
    } else if (tag == "DATE" && dateLue) {
      AvertitTout(j, "deuxième date de l'événement : la première est gardée");
    } else if (tag == "PLAC" && lieuLu) {
      AvertitTout(j, "deuxième lieu de l'événement : le premier est gardé");
    } else if (tag == "DATE") {
      dateLue = true;
      AvertitNonLues(j, {}, "précision de la date non importée");
      std::string raison;
      TDateRQ d;
      const bool ok = DateGedcomVersRQ(v, d, raison);
      e.Date = d;
      if (!ok) {
        Avertit(j, raison + (d.GetDate().empty() ? " : texte gardé dans la note de l'événement" : " : texte d'origine gardé dans la note de l'événement"));
        note += (note.empty() ? "" : "\r\n") + std::string("Date : ") + std::string(v);
      }
    } else if (tag == "PLAC") {
      lieuLu = true;
      std::string lieuDit;
      // La forme du lieu lui-même l'emporte sur celle de l'en-tête.
      const std::string_view forme = A.ValeurEnfant(j, "FORM");
      e.Lieu = Lieu(v, forme.empty() ? std::string_view(FormeLieux) : forme, j, lieuDit);
      e.SetLieuDit(lieuDit);
      AvertitNonLues(j, {"FORM"}, "précision du lieu non importée");
    } else if (tag == "TYPE") {
      if (generique) morceau(1, v, j);
      else if (A.Tag(i) != "EVEN" && A.Tag(i) != "FACT") Avertit(j, "type de l'événement non importé");
    } else if (tag == "SOUR") {
      AjouteSource(j, e);
    } else if (tag == "OBJE") {
      AjouteMedia(j, e);
    } else if (tag == "NOTE" || tag == "SNOTE") {
      note += (note.empty() ? "" : "\r\n") + TexteNote(j);
    } else if (tag == "ASSO" || tag == "_ASSO") {
      // ASSO sous un événement (GEDCOM 7), ou _ASSO (la forme 5.5.1 de l'export).
      AjouteCitee(j, e);
    } else {
      // Une sous-balise du catalogue : le morceau qui la porte.
      int n = 0;
      for (size_t m = 0; m < chp->SousTagGedCom.size(); ++m)
        if (chp->SousTagGedCom[m] == tag) n = int(m) + 1;
      if (n == 0) {
        AvertitTout(j, "sous-balise que le catalogue ne connaît pas pour ce champ : non importée");
        return;
      }
      std::string texte(v);
      A.Enfants(j, [&](uint32_t k) { texte = Joint(texte, A.Valeur(k)); });
      morceau(n, texte, j);
    }
  });
  e.SetDonnee(donnee);
  if (!note.empty()) e.Note = EcritNote(note, i);
  return true;
}

void TImport::FaitSimple(uint32_t i, TChpCs* chp, long noA, long noB, TChpsSimple::TEnreg& c) {
  c.Raz();
  c.SetLibelle(chp->LibelleInterne);
  c.NoPersA = noA;
  c.NoPersB = noB;
  std::string valeur(A.Valeur(i));
  if (A.Tag(i) == "FACT") valeur = std::string(A.Valeur(i));
  if (valeur.size() > kLgDonnee) Avertit(i, "valeur coupée à 100 caractères");
  c.SetDonnee(valeur);
  A.Enfants(i, [&](uint32_t j) {
    if (A.Tag(j) == "TYPE" && A.Tag(i) == "FACT") return;
    AvertitTout(j, "un champ simple n'a ni date, ni lieu, ni sous-champ : non importé");
  });
}

void TImport::LitNom(uint32_t i, TPerson& p, bool premier) {
  const std::string_view v = A.Valeur(i);
  std::string prenoms, nom;
  // Le nom est entre la première et la dernière barre : un nom qui porte lui-même une barre
  // (« Dupont/Durand ») revient entier.
  const size_t b1 = v.find('/');
  if (b1 != std::string_view::npos) {
    const size_t dernier = v.rfind('/');
    const size_t b2 = dernier == b1 ? std::string_view::npos : dernier;
    prenoms = Trim(v.substr(0, b1));
    nom = Trim(v.substr(b1 + 1, b2 == std::string_view::npos ? std::string_view::npos : b2 - b1 - 1));
    if (b2 != std::string_view::npos) prenoms = Trim(prenoms + " " + std::string(Trim(v.substr(b2 + 1))));
  } else {
    prenoms = Trim(v);
  }
  std::string rufname;
  A.Enfants(i, [&](uint32_t j) {
    const std::string_view tag = A.Tag(j);
    if (tag == "GIVN") {
      if (prenoms.empty()) prenoms = Trim(A.Valeur(j));
    } else if (tag == "SURN") {
      if (nom.empty()) nom = Trim(A.Valeur(j));
    } else if (tag == "SPFX") {
      if (b1 == std::string_view::npos) nom = Trim(std::string(A.Valeur(j)) + " " + nom);
    } else if (tag == "_RUFNAME" || tag == "_CALLNAME") {
      rufname = Trim(A.Valeur(j));
    } else if (tag == "NPFX" || tag == "NSFX" || tag == "NICK" || tag == "TYPE") {
      Avertit(j, "partie du nom non importée");
    } else {
      AvertitTout(j, "sous-balise du nom non importée");
    }
  });
  // Plusieurs noms de famille s'écrivent séparés par ';', comme l'index les attend.
  std::replace(nom.begin(), nom.end(), ',', ';');
  if (!premier) {
    const std::string actuel = p.Enreg.Nom;
    if (!nom.empty() && Cle(actuel).find(Cle(nom)) == std::string::npos) {
      const std::string joint = actuel.empty() ? nom : actuel + ";" + nom;
      if (joint.size() > 100) Avertit(i, "nom de plus de 100 caractères : nom secondaire laissé");
      else p.SetNom(joint);
    }
    if (!prenoms.empty() && Cle(prenoms) != Cle(p.Enreg.Prenoms)) Avertit(i, "prénoms d'un nom secondaire non importés");
    return;
  }
  if (nom.size() > 100) Avertit(i, "nom coupé à 100 caractères");
  p.SetNom(nom);
  // Le prénom usuel : marqué entre guillemets, ou désigné par _RUFNAME.
  std::vector<char> tampon(prenoms.begin(), prenoms.end());
  tampon.push_back(0);
  short usuel = CoteNoPrenomUsuel(tampon.data());
  prenoms = tampon.data();
  if (usuel == 0 && !rufname.empty()) {
    const std::vector<std::string_view> mots = DecoupeElts(prenoms, ' ');
    for (size_t m = 0; m < mots.size() && m < 255; ++m)
      if (Cle(mots[m]) == Cle(rufname)) {
        usuel = short(m + 1);
        break;
      }
  }
  if (prenoms.size() > 70) Avertit(i, "prénoms coupés à 70 caractères");
  p.SetPrenoms(prenoms);
  p.Enreg.PrenomUsuel = static_cast<uint8_t>(usuel > 0 && usuel < 256 ? usuel : 0);
}

void TImport::EcritPersonne(int32_t k) {
  TPers& d = Pers[size_t(k)];
  TPerson p(Fic);
  // Les numéros sont réservés par paquets (voir Lance) : la fiche prend le sien.
  p.NouvelleFiche(NoPers(k));
  p.Enreg.ChpsSimpleLoaded = p.Enreg.EvenLoaded = p.Enreg.CitationLoaded = 1;
  if (p.No() != NoPers(k)) throw ERqBase("Import GEDCOM : les numéros des personnes ne se suivent plus.");
  p.SetSexe(d.Sexe);
  if (d.Pere >= 0) p.Enreg.Pere = TLienPers(NoPers(d.Pere));
  if (d.Mere >= 0) p.Enreg.Mere = TLienPers(NoPers(d.Mere));
  for (size_t c = 0; c < d.Conjoints.size(); ++c) p.Enreg.Conjoints[c] = TLienConj(NoPers(d.Conjoints[c]));
  for (size_t c = 0; c < d.Enfants.size(); ++c) p.Enreg.Enfants[c] = TLienPers(NoPers(d.Enfants[c]));
  p.NouvelleFicheComplementaire();

  int nbFaits = 0;
  auto place = [&](uint32_t j) {
    if (nbFaits >= TPerson::NbLiens) {
      AvertitTout(j, "101e fait de la personne : non importé");
      return false;
    }
    ++nbFaits;
    return true;
  };
  bool premierNom = true;
  std::string note;
  A.Enfants(d.Ligne, [&](uint32_t j) {
    const std::string tag(A.Tag(j));
    if (tag == "NAME") {
      LitNom(j, p, premierNom);
      premierNom = false;
    } else if (tag == "SEX") {
      const std::string_view s = A.Valeur(j);
      if (s != "M" && s != "F" && s != "U" && s != "?" && !s.empty()) Avertit(j, "sexe inconnu : lu ?");
      AvertitNonLues(j, {}, "précision du sexe non importée");
    } else if (tag == "FAMC" || tag == "FAMS") {
      // Lus avec les familles ; le dossier n'a pas de nature du lien (PEDI...).
      AvertitNonLues(j, {}, "précision du lien de famille non importée");
    } else if (tag == "NOTE" || tag == "SNOTE") {
      note += (note.empty() ? "" : "\r\n\r\n") + TexteNote(j);
    } else if (tag == "ASSO") {
      AvertitTout(j, "personne associée hors d'un événement : non importée (le dossier cite les personnes dans ses événements)");
    } else if (tag == "OBJE") {
      TChpCs* image = Cat ? Cat->RechercheChampsInternePtr("IMAGE") : nullptr;
      if (!image) {
        AvertitTout(j, "le catalogue n'a pas de champ IMAGE : média non importé");
        return;
      }
      if (!place(j)) return;
      TEvenement e(Bdd);
      e.Enreg.SetLibelle(image->LibelleInterne);
      e.Enreg.NoPersA = p.No();
      e.Enreg.No = Bdd->ReturnNewNumEven();
      AjouteMedia(j, e.Enreg);
      if (e.Enreg.CountIllustration() == 0) {
        --nbFaits;
        return;
      }
      p.AjoutEven(&e, true, false, false);
      ++R.Evenements;
    } else if (TChpCs* chp = ChampDe(j, false)) {
      if (!place(j)) return;
      if (chp->IsEvenement()) {
        TEvenement e(Bdd);
        FaitEvenement(j, chp, p.No(), 0, e.Enreg);
        p.AjoutEven(&e, true, false, false);
      } else {
        TChpsSimple::TEnreg c;
        FaitSimple(j, chp, p.No(), 0, c);
        p.AjoutChpsSimple(&c, 0);
      }
      ++R.Evenements;
    } else if (ParTag.count(tag) || tag == "EVEN" || tag == "FACT") {
      AvertitTout(j, ParTag.count(tag) ? "fait de couple sous une personne : non importé"
                                       : "type d'événement que le catalogue n'a pas : non importé");
    } else if (Cat && Cat->RechercheChampsInternePtr("DDMF") && Cat->RechercheChampsInternePtr("DDMF")->TagGedCom == tag) {
      AvertitTout(j, "date de modification du fichier d'origine : non importée (le dossier date ses propres changements)");
    } else if (tag == "SOUR") {
      AvertitTout(j, "source de la personne : non importée (les sources du dossier vont aux événements)");
    } else {
      AvertitTout(j, "balise que le catalogue ne connaît pas : non importée");
    }
  });
  // Les faits des couples : faits au premier des deux conjoints écrit, repris par le second.
  for (const int32_t f : d.Familles) {
    TFam& fam = Fams[size_t(f)];
    const long conj = NoPers(fam.Mari == k ? fam.Femme : fam.Mari);
    if (fam.Ecrits == 0) {
      std::string note2;
      A.Enfants(fam.Ligne, [&](uint32_t j) {
        const std::string tag(A.Tag(j));
        if (tag == "HUSB" || tag == "WIFE" || tag == "CHIL") return;
        if (tag == "NOTE" || tag == "SNOTE") {
          note2 += (note2.empty() ? "" : "\r\n\r\n") + TexteNote(j);
        } else if (TChpCs* chp = ChampDe(j, true)) {
          if (chp->IsEvenement()) {
            fam.Evens.emplace_back();
            fam.LignesEvens.push_back(j);
            FaitEvenement(j, chp, NoPers(fam.Mari), NoPers(fam.Femme), fam.Evens.back());
          } else {
            fam.Chps.emplace_back();
            fam.LignesChps.push_back(j);
            FaitSimple(j, chp, NoPers(fam.Mari), NoPers(fam.Femme), fam.Chps.back());
            fam.Chps.back().No = Bdd->ReturnNewNumChpsSimple();
          }
        } else if (tag == "CHAN") {
          AvertitTout(j, "date de modification du fichier d'origine : non importée");
        } else {
          AvertitTout(j, "balise de famille que le catalogue n'a pas pour un couple : non importée");
        }
      });
      if (!note2.empty()) {
        if (fam.Evens.empty()) Avertit(fam.Ligne, "note de famille sans événement du couple pour la recevoir : non importée");
        else fam.Evens.front().Note = EcritNote(note2, fam.Ligne);
      }
      R.Evenements += long(fam.Evens.size() + fam.Chps.size());
    }
    const std::string raison101 = "101e fait de la personne : fait du couple non écrit chez elle";
    for (size_t n = 0; n < fam.Evens.size(); ++n) {
      TEvenement::TEnreg& ev = fam.Evens[n];
      if (nbFaits >= TPerson::NbLiens) {
        AvertitTout(fam.LignesEvens[n], raison101);
        continue;
      }
      ++nbFaits;
      TEvenement e(Bdd);
      e.Enreg = ev;
      p.AjoutEven(&e, true, false, false);
    }
    for (size_t n = 0; n < fam.Chps.size(); ++n) {
      TChpsSimple::TEnreg& c = fam.Chps[n];
      if (nbFaits >= TPerson::NbLiens) {
        AvertitTout(fam.LignesChps[n], raison101);
        continue;
      }
      ++nbFaits;
      p.AjoutChpsSimple(&c, conj);
    }
    if (++fam.Ecrits == 2) {
      fam.Evens.clear();
      fam.Evens.shrink_to_fit();
      fam.Chps.clear();
    }
  }
  if (!note.empty()) p.Enreg.Note = static_cast<int32_t>(EcritNote(note, d.Ligne));
  // Ce que fait Enregistrement, moins deux choses qu'un import n'a pas à faire pour chaque
  // fiche : chercher les lignes d'avant de la personne (elle est neuve : ses faits de couple
  // déjà écrits par le conjoint sont repris par leur numéro), et tenir l'index des noms à jour
  // ligne à ligne (il est refait d'un trait à la fin, voir Lance).
  if (TVoisinsPersonne* v = p.Voisins(); v && v->ClassementParType()) p.ClassementTypeEven();
  p.ClassementChronoEven();
  EnregistrerChpsOfPerson(*Bdd, p, p.ListesChps(), true);
  p.Enregistrement(-3, nullptr, true, true);
  ++R.Personnes;
  // Les faits sont encore en mémoire : les deux années notées se lisent ici sans rien relire.
  TEstimationPersonne estimation;
  if (estimation.EstimeAnneesNotees(p.No(), &p)) {
    short amin = 0, amax = 0;
    TIndexPerson::SetAnneeMinAnneeMax(&p, estimation.AnneeNaissance, estimation.AnneeDeces, amin, amax);
    Annees[size_t(k)] = {amin, amax, true};
  }
}

void TImport::Lance() {
  if (!Fic || !Bdd || !Bdd->EstOuverte() || Gest.IsReadOnly() || Gest.EnErreur())
    throw ERqBase("Le dossier ne peut pas recevoir l'import : il n'est pas ouvert en écriture avec sa base.");
  const auto& racines = A.Enregistrements();
  Cites.assign(A.Lignes().Lignes.size(), false);
  for (const uint32_t i : racines) {
    const std::string_view tag = A.Tag(i);
    if (tag == "INDI") {
      PersDeLigne.emplace(i, int32_t(Pers.size()));
      Pers.emplace_back();
      Pers.back().Ligne = i;
      const std::string_view s = A.ValeurEnfant(i, "SEX");
      Pers.back().Sexe = s == "M" ? 'M' : s == "F" ? 'F' : '?';
    } else if (tag == "FAM") {
      FamDeLigne.emplace(i, int32_t(Fams.size()));
      Fams.emplace_back();
      Fams.back().Ligne = i;
    } else if (tag == "HEAD") {
      AuteurEnTete = std::string(TArbreGedcom::Pointeur(A.ValeurEnfant(i, "SUBM")));
      const int64_t gedc = A.Enfant(i, "GEDC");
      if (gedc >= 0) R.Version = std::string(A.ValeurEnfant(uint32_t(gedc), "VERS"));
      if (const int64_t plac = A.Enfant(i, "PLAC"); plac >= 0) FormeLieux = std::string(A.ValeurEnfant(uint32_t(plac), "FORM"));
    } else if (tag == "TRLR" || tag == "SOUR" || tag == "OBJE" || tag == "NOTE" || tag == "SNOTE") {
      // La fin, et les enregistrements lus par renvoi.
    } else if (tag == "SUBM" && !AuteurEnTete.empty() && A.Xref(i) == AuteurEnTete) {
      // L'auteur que l'en-tête désigne fait partie de l'en-tête, dont rien n'est dit.
    } else {
      AvertitTout(i, tag == "REPO" || tag == "SUBM" || tag == "SUBN"
                         ? "dépôt ou auteur du fichier : non importé"
                         : "enregistrement d'une sorte que ce programme n'importe pas");
    }
  }
  if (Pers.size() > size_t(0x7FFFFFFF) - size_t(Fic->NbPersEffective()))
    throw ERqBase("Le fichier a trop de personnes pour le dossier.");
  LitFamilles();
  ControleFamc();
  LieFamilles();
  RetireCycles();
  if (Prog.Abandon()) throw ERqBase("Import abandonné avant toute écriture : le dossier n'a pas changé.");

  Base = Fic->NbPersEffective();
  // Un dossier neuf a déjà son numéro 1, vide : la première personne du fichier le prend.
  bool reprendUn = false;
  if (Base == 1 && !Pers.empty() && Fic->Fichier()) {
    const int64_t taille = Fic->Fichier()->Taille();
    if (taille >= 0 && taille < 2 * int64_t(sizeof(TEnregPersonne))) {
      reprendUn = true;  // la fiche 1 n'est pas encore sur le disque
    } else {
      TPerson un(Fic, 1, true);
      reprendUn = un.FicheVide() && !un.FicheSupprimee() && un.GetNbInfoEven() == 0 && un.GetNbChpsSimple() == 0;
    }
    if (reprendUn) Base = 0;
  }
  Prog.Titre("Import GEDCOM");
  Prog.Maximum(long(Pers.size()));
  // Un import est un travail de masse : les fichiers du dossier perdent l'écriture immédiate
  // le temps de l'import, et tout est forcé sur le disque à la fin (Flush), même sur une erreur.
  struct TSansEcritureImmediate {
    std::vector<std::pair<TFichierBrut*, bool>> Modes;
    TGestFichier& G;
    explicit TSansEcritureImmediate(TGestFichier& g) : G(g) {
      for (TFicEnregBase* f : std::initializer_list<TFicEnregBase*>{g.FicPersons(), g.FicLie(), g.FicQua(), g.FicPar(),
                                                                    g.FicExtPersons(), g.FicNotes()})
        if (f && f->Fichier()) {
          Modes.emplace_back(f->Fichier(), f->Fichier()->EcritureImmediate());
          f->Fichier()->ChangeEcritureImmediate(false);
        }
    }
    ~TSansEcritureImmediate() {
      G.Flush();
      for (auto& [f, immediate] : Modes)
        if (immediate) f->ChangeEcritureImmediate(true);
    }
  } sansEcritureImmediate(Gest);
  // L'index des noms se refait à la fin ; marqué à refaire d'abord, une panne au milieu le
  // fait refaire à la prochaine ouverture en écriture.
  TFicIndexPerson* index = Gest.FicIndexPerson();
  if (index) Bdd->MAJInfoChps("INDEXNAME", "0");
  Annees.assign(Pers.size(), TAnneesIndex());
  Bdd->BeginImport();
  for (size_t k = 0; k < Pers.size(); ++k) {
    // Les numéros de 1000 personnes sont donnés et l'en-tête écrit une fois pour elles, au
    // lieu d'une fois par fiche : s'il est relu avant qu'elles soient toutes écrites (panne),
    // son compte est ramené à ce que le fichier tient.
    if (NoPers(int32_t(k)) > Fic->NbPersEffective()) {
      const long jusque = NoPers(int32_t(std::min(Pers.size(), k + 1000) - 1));
      while (Fic->NbPersEffective() < jusque) Fic->ReturnNewNum();
      Fic->EcritureEntete();
    }
    EcritPersonne(int32_t(k));
    if (k % 1000 == 999) Prog.Position(long(k + 1));
  }
  Bdd->EndImport();
  Prog.Position(long(Pers.size()));
  // Chaque fiche a son numéro dans le compte du fichier : sinon son écriture aurait été
  // refusée sans bruit, ce qui ne doit pas passer pour un import réussi.
  if (Fic->NbPersEffective() < NoPers(int32_t(Pers.size()) - 1))
    throw ERqBase("Import GEDCOM : des personnes n'ont pas pu être écrites dans le fichier des personnes.");
  // Les enregistrements partagés que rien ne cite : non importés, et dits.
  for (const uint32_t i : racines) {
    const std::string_view tag = A.Tag(i);
    if ((tag == "SOUR" || tag == "OBJE" || tag == "NOTE" || tag == "SNOTE") && !Cites[i])
      Avertit(i, "enregistrement qu'aucune ligne importée ne cite : non importé");
  }
  // Le fichier ne sert plus : ce que l'import en a tiré est rendu, et ses lignes et son arbre
  // le sont par qui les possède, avant que la mémoire de l'index prenne leur place.
  std::vector<TPers>().swap(Pers);
  std::vector<TFam>().swap(Fams);
  PersDeLigne = {};
  FamDeLigne = {};
  Lieux = {};
  std::vector<bool>().swap(Cites);
  if (FichierLu) FichierLu();
  const auto connues = [&](long no, short& anneeMin, short& anneeMax) {
    const long k = no - Base - 1;
    if (k < 0 || k >= long(Annees.size()) || !Annees[size_t(k)].Connues) return false;
    anneeMin = Annees[size_t(k)].Min;
    anneeMax = Annees[size_t(k)].Max;
    return true;
  };
  // La mémoire de l'index se fait des lignes écrites, puis est gardée dans son fichier : la
  // première ouverture du dossier n'a rien à refaire.
  if (index && index->ReinitTableIndex(nullptr, connues, true)) {
    Bdd->MAJInfoChps("INDEXNAME", "UPDATED");
    index->SauvegardeFichier();
  }
  Gest.EcritureEntete();
  Gest.Flush();
  // Le rapport suit l'ordre du fichier, quel que soit l'ordre où les lignes ont été jugées.
  std::stable_sort(R.Avertissements.begin(), R.Avertissements.end(),
                   [](const TAvertissement& a, const TAvertissement& b) { return a.Ligne < b.Ligne; });
}

}  // namespace

std::unique_ptr<TGedcomLu> LitGedcom(std::string_view octets) {
  auto lu = std::make_unique<TGedcomLu>();
  std::string refus;
  lu->Lignes = LitLignesGedcom(octets, lu->Rapport, refus);
  if (!refus.empty()) throw ERqBase(refus);
  lu->Arbre = std::make_unique<TArbreGedcom>(lu->Lignes, lu->Rapport);
  for (const uint32_t i : lu->Arbre->Enregistrements())
    if (lu->Arbre->Tag(i) == "INDI") ++lu->NbPersonnes;
  // Un fichier complet finit par TRLR : sans lui, la fin a pu se perdre (dit une fois).
  const auto& racines = lu->Arbre->Enregistrements();
  if (racines.empty() || lu->Arbre->Tag(racines.back()) != "TRLR") {
    const auto derniere = static_cast<uint32_t>(lu->Lignes.Lignes.size() - 1);
    lu->Rapport.Avertit(lu->Arbre->Numero(derniere), lu->Lignes.Originale(derniere),
                        "le fichier ne finit pas par TRLR : il est peut-être tronqué");
  }
  return lu;
}

TRapportImport ImporteGedcom(TGestFichier& gest, TGedcomLu& lu, TProgression* progression) {
  TRapportImport r = lu.Rapport;
  TImport import(gest, *lu.Arbre, r, progression ? *progression : ProgressionMuette());
  import.FichierLu = [&lu] {
    lu.Arbre.reset();
    lu.Lignes = TLignesGedcom();
  };
  import.Lance();
  return r;
}

TRapportImport ImporteGedcom(TGestFichier& gest, std::string_view octets, TProgression* progression) {
  auto lu = LitGedcom(octets);
  return ImporteGedcom(gest, *lu, progression);
}

}  // namespace rqbase
