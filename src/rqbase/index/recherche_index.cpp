// Recherche par nom dans la table triée de l'index, et listes de valeurs tirées d'elle.
//
// Un critère de nom exact (ou un masque qui commence par des lettres) ne parcourt que la
// tranche de la table qui porte ce nom : la table est triée d'abord sur le nom. Un critère
// vide, un masque qui commence par '*' ou le soundex parcourent toute la table.
#include "rqbase/index/recherche_index.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <algorithm>
#include <climits>
#include <cstring>
#include <unordered_map>

#include "rqbase/index/bo_chn.h"
#include "rqbase/index/noms_equivalents.h"
#include "rqbase/index/particules.h"
#include "rqbase/index/soundex.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/person/voisins_personne.h"
#include "rqbase/places/gestduplicat.h"
#include "rqbase/platform/progression.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/majuscules.h"

namespace rqbase {

namespace {

constexpr const char* kSansNom = "ZPASZDEZNOM";
constexpr const char* kSansPrenom = "ZPASZDEZPRENOM";
constexpr const char* kSansPere = "ZPASZDEZPERE";
constexpr const char* kSansMere = "ZPASZDEZMERE";
// La clé d'index garde 20 caractères : un critère plus long est coupé de même.
constexpr size_t kLongueurCle = 20;

// Le critère spécial, avec ou sans le 'Z' final que certaines saisies lui ajoutent.
bool EstSpecial(const std::string& critere, const char* special) {
  const size_t n = std::strlen(special);
  return critere.compare(0, std::string::npos, special) == 0 ||
         (critere.size() == n + 1 && critere.compare(0, n, special) == 0 && critere[n] == 'Z');
}


// Un élément d'un nom ou de prénoms de fiche, comme CompareNomPrenoms le compare.
std::string ElementCompare(const std::string& element) {
  std::string e = Trim(PasseParticule(Trim(element)));
  return UpperANSIChaineAS(e, 2);
}

std::vector<std::string> Elements(const std::string& texte, char separateur) {
  std::vector<std::string> r;
  for (std::string_view e : DecoupeElts(texte, separateur)) {
    std::string t = Trim(e);
    if (!t.empty()) r.push_back(t);
  }
  return r;
}

// Un élément d'une fiche comparé à un critère d'index.
bool ElementRepond(const std::vector<std::string>& elements, const std::string& critere, const char* special,
                   bool soundex) {
  if (critere.empty()) return true;
  char sdxCritere[kTailleSoundex];
  strSoundex(critere.c_str(), sdxCritere);
  bool vide = elements.empty();
  for (const std::string& brut : elements) {
    const std::string e = ElementCompare(brut.substr(0, 100));
    if (e.empty()) {
      vide = true;
      continue;
    }
    if (StrCmpMasque(e.c_str(), critere.c_str()) == 0) return true;
    if (soundex && sdxCritere[0]) {
      char sdx[kTailleSoundex];
      if (strSoundex(e.c_str(), sdx) && StrCmpMasque(sdx, sdxCritere) == 0) return true;
    }
  }
  return vide && EstSpecial(critere, special);
}

// Un critère tapé, mis en forme d'index en gardant ses '*' : la forme d'index ôte l'étoile avec
// les autres caractères interdits, et le masque serait perdu. Les particules se cherchent sur
// le critère entier (l'étoile ne sépare pas les mots : "D*R*" n'est pas la particule "D").
std::string FormatCritere(const std::string& critere) {
  if (critere.find('*') == std::string::npos) return FormatIndex(critere);
  const std::string plie = UpperANSIChaineAS(PasseParticule(critere), 2);
  std::string r;
  for (size_t debut = 0;;) {
    const size_t etoile = plie.find('*', debut);
    r += TransformeEnCaractereIndex(
        plie.substr(debut, etoile == std::string::npos ? std::string::npos : etoile - debut));
    if (etoile == std::string::npos) break;
    r += '*';
    debut = etoile + 1;
  }
  return r;
}

// Un élément tapé d'un critère de nom (`nom`) ou de prénom, dans la forme des lignes de
// l'index : sans masque, la forme même des lignes (coupe comprise) ; avec, FormatCritere. Tapé
// mais fait seulement de particules ou de signes, il ne garde rien : c'est alors le nom vide,
// celui des lignes des personnes dont le nom n'a rien gardé d'autre.
std::string FormeCritere(const std::string& critere, bool nom) {
  if (critere.find('*') != std::string::npos) return FormatCritere(critere);
  std::string forme = nom ? CleNomIndex(critere) : ClePrenomIndex(critere);
  if (forme.empty() && !Trim(critere).empty()) forme = nom ? kSansNom : kSansPrenom;
  return forme;
}

// Les 4 caractères d'un soundex dans un entier (égalité seulement).
uint32_t CodeSoundex(const char* s) {
  uint32_t c = 0;
  for (int i = 0; i < 4 && s[i]; ++i) c |= uint32_t(uint8_t(s[i])) << (8 * i);
  return c;
}

bool CommencePar(const char* texte, const std::string& debut) {
  return std::strncmp(texte, debut.c_str(), debut.size()) == 0;
}

}  // namespace

// Un critère de nom ou de prénom prêt pour une recherche : texte d'index, son soundex.
struct TGestEltIndex::TCritere {
  std::string Texte;
  char Soundex[kTailleSoundex] = {};
  bool Vide = true;
  bool SansValeur = false;  // ZPASZDEZNOM / ZPASZDEZPRENOM

  TCritere(const std::string& texte, const char* special) : Texte(texte) {
    if (Texte.size() > kLongueurCle && !EstSpecial(Texte, special)) Texte.resize(kLongueurCle);
    Vide = Texte.empty();
    SansValeur = EstSpecial(Texte, special);
    strSoundex(Texte.c_str(), Soundex);
  }
  // `texte` et `soundex` : ceux d'une ligne de l'index.
  bool Repond(const char* texte, const char* soundex, bool avecSoundex) const {
    if (Vide) return true;
    if (SansValeur) return texte[0] == 0;
    if (StrCmpMasque(texte, Texte.c_str()) == 0) return true;
    return avecSoundex && Soundex[0] != 0 && texte[0] != 0 && StrCmpMasque(soundex, Soundex) == 0;
  }
};

// --- Masque ---

int StrCmpMasque(const char* texte, const char* masque) {
  if (!texte) texte = "";
  if (!masque) masque = "";
  if (!std::strchr(masque, '*')) return std::strcmp(texte, masque);
  const size_t lt = std::strlen(texte);
  const char* m = masque;
  size_t pos = 0;
  bool premier = true;
  while (true) {
    const char* etoile = std::strchr(m, '*');
    const size_t n = etoile ? size_t(etoile - m) : std::strlen(m);
    if (!etoile) {
      // Dernier morceau : il finit le texte (un masque qui finit par '*' en laisse un vide).
      if (n == 0) return 0;
      if (lt - pos < n) return 1;
      if (premier) return (lt == n && std::memcmp(texte, m, n) == 0) ? 0 : 1;
      return std::memcmp(texte + lt - n, m, n) == 0 ? 0 : 1;
    }
    if (n > 0) {
      if (premier) {
        if (lt < n || std::memcmp(texte, m, n) != 0) return 1;
        pos = n;
      } else {
        const std::string_view reste(texte + pos, lt - pos);
        const size_t trouve = reste.find(std::string_view(m, n));
        if (trouve == std::string_view::npos) return 1;
        pos += trouve + n;
      }
    }
    premier = false;
    m = etoile + 1;
  }
}

// --- Critères ---

void TGestEltIndex::TRechSimple::RazTotal() {
  *this = TRechSimple();
}

void TGestEltIndex::TRechSimple::RazExclu() {
  NoExclu = -1;
  std::memset(CriteresExclu, 0, sizeof CriteresExclu);
  ExcluParPere = ExcluParMere = false;
  ExcluPere = ExcluMere = 0;
  Profondeur = 0;
  Exclus.clear();
}

std::string TGestEltIndex::FormatIndex(const std::string& nom) {
  return rqbase::FormatIndex(nom);
}

// --- Recherche ---

long TGestEltIndex::RechercheSimple(const TRechSimple& rs, std::vector<std::string>* noms, std::vector<long>* numeros,
                                    TProgression* progression) {
  if (!rs.Ajoute || GetNbElt() == 0) {
    if (noms) noms->clear();
    if (numeros) numeros->clear();
  }
  const size_t garde = Recherche(rs, progression, nullptr);
  const std::vector<std::pair<long, long>>& ordre = Trouvees.Classees();  // (rang, personne)
  if (numeros) numeros->reserve(numeros->size() + garde);
  for (size_t k = 0; k < garde; ++k) {
    const auto& [rang, no] = ordre[k];
    if (numeros) numeros->push_back(no);
    if (noms) {
      TEnregPersonne e{};
      if (Personnes && Personnes->LitEnreg(no, e)) {
        e.Nom[sizeof e.Nom - 1] = 0;
        e.Prenoms[sizeof e.Prenoms - 1] = 0;
        noms->push_back(std::string(e.Nom) + " " + e.Prenoms);
      } else {
        TEltIndex elt;
        Lit(rang, elt);
        noms->push_back(std::string(elt.Enreg.Nom) + " " + elt.Enreg.Prenom);
      }
    }
  }
  return long(garde);
}

long TGestEltIndex::RechercheSimpleLV(const TRechSimple& rs, std::vector<TLigneResultat>& lignes,
                                      TProgression* progression) {
  return RemplitLignes(rs, lignes, Recherche(rs, progression, nullptr));
}

long TGestEltIndex::RechercheSimpleLVArbAff(const TRechSimple& rs, const std::set<long>& affichees,
                                            std::vector<TLigneResultat>& lignes, TProgression* progression) {
  return RemplitLignes(rs, lignes, Recherche(rs, progression, &affichees));
}

long TGestEltIndex::RemplitLignes(const TRechSimple& rs, std::vector<TLigneResultat>& lignes, size_t garde) {
  if (!rs.Ajoute) lignes.clear();
  const std::vector<std::pair<long, long>>& ordre = Trouvees.Classees();
  lignes.reserve(lignes.size() + garde);
  TEltIndex elt;
  for (size_t k = 0; k < garde; ++k) {
    const auto& [rang, no] = ordre[k];
    Lit(rang, elt);
    TLigneResultat l;
    l.Numero = no;
    // Toutes les lignes d'une personne portent les mêmes années et le même sexe.
    l.AnneeMin = elt.Enreg.AnneeMin;
    l.AnneeMax = elt.Enreg.AnneeMax;
    if (Personnes) {
      // La fiche telle que l'application la montre (une fiche abîmée se lit vide).
      const TPerson p(Personnes, no);
      l.Nom = p.Enreg.Nom;
      l.Prenoms = p.Enreg.Prenoms;
      l.Sexe = p.Enreg.Sexe;
    } else {
      l.Nom = elt.Enreg.Nom;
      l.Prenoms = elt.Enreg.Prenom;
      l.Sexe = (elt.Enreg.Sexe == 'M' || elt.Enreg.Sexe == 'F') ? elt.Enreg.Sexe : '?';
    }
    lignes.push_back(std::move(l));
  }
  return long(garde);
}

size_t TGestEltIndex::Recherche(const TRechSimple& rs, TProgression* progression, const std::set<long>* parmi) {
  Trouvees.Commence();
  if (GetNbElt() == 0) return 0;

  std::vector<std::string> lesNoms = Elements(rs.Nom, ';');
  std::vector<std::string> lesPrenoms = Elements(rs.Prenoms, ' ');
  if (lesNoms.empty()) lesNoms.push_back("");
  if (lesPrenoms.empty()) lesPrenoms.push_back("");

  // Chaque critère, et avec les équivalences chacune de ses graphies, gardées par nom pour
  // resservir dans les boucles.
  const bool equivalences = rs.Equivalences && NomsEquiv;
  std::map<std::string, std::vector<std::string>> variantes;
  auto graphies = [&](const std::string& critere, TTabNomEquiv::TGenre genre) -> const std::vector<std::string>& {
    const std::string cle = std::string(1, char('0' + int(genre))) + critere;
    auto [it, neuve] = variantes.try_emplace(cle);
    if (neuve) {
      const std::string forme = FormeCritere(critere, genre == TTabNomEquiv::TGenre::Noms);
      const bool special = EstSpecial(forme, kSansNom) || EstSpecial(forme, kSansPrenom);
      // Un masque, une valeur spéciale ou un critère vide n'ont pas d'équivalents.
      if (equivalences && !forme.empty() && forme.find('*') == std::string::npos && !special)
        it->second = NomsEquiv->GetNomEquiv(critere, genre);
      else
        it->second = {forme};
    }
    return it->second;
  };

  if (progression) {
    progression->Maximum(long(lesNoms.size() * lesPrenoms.size()));
    progression->Position(0);
  }
  Parmi = parmi;
  // Un seul couple de critères parcourt la table dans l'ordre : la limite atteinte, la suite
  // ne peut venir qu'après, et le parcours s'arrête là.
  ArretA = lesNoms.size() * lesPrenoms.size() == 1 && !equivalences ? rs.Limite : 0;
  for (const std::string& nom : lesNoms) {
    for (const std::string& prenom : lesPrenoms) {
      if (GetAbandon() || (progression && progression->Abandon())) break;
      for (const std::string& n : graphies(nom, TTabNomEquiv::TGenre::Noms))
        for (const std::string& p : graphies(prenom, TTabNomEquiv::TGenre::Prenoms))
          RechercheSimpleNomEtConj(rs, Trouvees, n, p);
      if (progression) progression->Avance();
    }
  }
  ArretA = 0;
  Parmi = nullptr;
  const size_t n = Trouvees.Classees().size();
  return rs.Limite > 0 ? std::min(n, size_t(rs.Limite)) : n;
}

void TGestEltIndex::RechercheSimpleNomEtConj(const TRechSimple& rs, TTrouvees& trouves,
                                             const std::string& nom, const std::string& prenom) {
  const TCritere cNom(nom, kSansNom);
  const TCritere cPrenom(prenom, kSansPrenom);

  // La tranche de la table qui peut répondre.
  long debut = 0, fin = GetNbElt();
  std::string prefixe;
  bool tranche = false;
  if (!cNom.Vide && !rs.SoundexNom) {
    if (cNom.SansValeur) {
      prefixe.clear();
      tranche = true;
    } else {
      prefixe = cNom.Texte.substr(0, cNom.Texte.find('*'));
      tranche = !prefixe.empty();
    }
    if (tranche) debut = PremierRangNom(prefixe);
  }

  // Au son, sans masque : seules les lignes de même soundex, et celles du nom exact, peuvent
  // répondre.
  std::vector<long> candidats;
  const bool parSoundex = rs.SoundexNom && !cNom.Vide && !cNom.SansValeur && cNom.Soundex[0] != 0 &&
                          cNom.Texte.find('*') == std::string::npos;
  if (parSoundex) {
    PrepareSoundex();
    const uint64_t code = uint64_t(CodeSoundex(cNom.Soundex)) << 32;
    for (auto it = std::lower_bound(ParSoundex.begin(), ParSoundex.end(), code);
         it != ParSoundex.end() && (*it & 0xFFFFFFFF00000000ULL) == code; ++it)
      candidats.push_back(long(*it & 0xFFFFFFFFULL));
    TEltIndex e;
    for (long r = PremierRangNom(cNom.Texte); r < GetNbElt(); ++r) {
      Lit(r, e);
      if (cNom.Texte != e.Enreg.Nom) break;
      candidats.push_back(r);
    }
    std::sort(candidats.begin(), candidats.end());
    candidats.erase(std::unique(candidats.begin(), candidats.end()), candidats.end());
    debut = 0;
    fin = long(candidats.size());
  }

  TEltIndex elt;
  for (long i = debut; i < fin; ++i) {
    if ((i & 1023) == 0 && GetAbandon()) return;
    const long rang = parSoundex ? candidats[size_t(i)] : i;
    if (rang >= GetNbElt()) continue;
    Lit(rang, elt);
    const TEnregIndex& e = elt.Enreg;
    if (tranche) {
      if (cNom.SansValeur ? e.Nom[0] != 0 : !CommencePar(e.Nom, prefixe)) break;
    }
    if (!cNom.Repond(e.Nom, e.NomSoundex, rs.SoundexNom)) continue;
    if (!cPrenom.Repond(e.Prenom, e.PrenomSoundex, rs.SoundexPrenom)) continue;
    if (!CritereLigne(rs, e)) continue;
    const long no = e.NoPers;
    switch (trouves.Etat(no)) {
      case TTrouvees::TEtat::Trouvee:
        trouves.Trouve(no, rang);
        continue;
      case TTrouvees::TEtat::Ecartee:
        continue;
      case TTrouvees::TEtat::Inconnue:
        break;
    }
    // Les critères propres à la personne ne dépendent pas du couple cherché : jugée une fois
    // par recherche.
    if ((Parmi && Parmi->count(no) == 0) || !CriterePersonne(rs, no)) {
      trouves.Ecarte(no);
      continue;
    }
    trouves.Trouve(no, rang);
    if (ArretA > 0 && long(trouves.Nombre()) >= ArretA) return;
  }
}

// --- Personnes trouvées ---

void TGestEltIndex::TTrouvees::Commence() {
  Liste.clear();
  Lointaines.clear();
  if (++Date == 0) {  // après quatre milliards de recherches, les dates repartent de zéro
    std::fill(Places.begin(), Places.end(), std::pair<uint32_t, uint32_t>{0, 0});
    Date = 1;
  }
}

std::pair<uint32_t, uint32_t>* TGestEltIndex::TTrouvees::Place(long no, bool creer) {
  // Le tableau direct suit les numéros jusqu'à 16 millions de personnes ; un numéro plus
  // grand (ligne abîmée, table sans fichier de personnes) passe par une table de hachage.
  constexpr long kDirect = 1L << 24;
  if (no >= 0 && no < kDirect) {
    const auto n = size_t(no);
    if (n >= Places.size()) {
      if (!creer) return nullptr;
      Places.resize(std::max(n + 1, Places.size() * 2), {0, 0});
    }
    return &Places[n];
  }
  if (!creer) {
    auto it = Lointaines.find(no);
    return it == Lointaines.end() ? nullptr : &it->second;
  }
  return &Lointaines[no];
}

TGestEltIndex::TTrouvees::TEtat TGestEltIndex::TTrouvees::Etat(long no) {
  const auto* place = Place(no, false);
  if (!place || place->first != Date) return TEtat::Inconnue;
  return place->second == kEcartee ? TEtat::Ecartee : TEtat::Trouvee;
}

void TGestEltIndex::TTrouvees::Ecarte(long no) {
  *Place(no, true) = {Date, kEcartee};
}

void TGestEltIndex::TTrouvees::Trouve(long no, long rang) {
  auto* place = Place(no, true);
  if (place->first == Date && place->second != kEcartee) {
    auto& deja = Liste[place->second].first;
    deja = std::min(deja, rang);
    return;
  }
  *place = {Date, uint32_t(Liste.size())};
  Liste.emplace_back(rang, no);
}

std::vector<std::pair<long, long>>& TGestEltIndex::TTrouvees::Classees() {
  // Un seul couple de critères donne ses personnes dans l'ordre des rangs : rien à trier.
  if (!std::is_sorted(Liste.begin(), Liste.end())) std::sort(Liste.begin(), Liste.end());
  return Liste;
}

bool TGestEltIndex::CritereLigne(const TRechSimple& rs, const TEnregIndex& e) const {
  if (e.FicheSupprimee == 'O' || e.NoPers <= 0) return false;
  // Une ligne qui désigne une personne au-delà du fichier n'en trouve aucune (et ne fait pas
  // grandir la table des personnes trouvées jusqu'à son numéro).
  if (Personnes && e.NoPers > Personnes->NbEnreg()) return false;
  if (rs.NoPers != -1 && e.NoPers != rs.NoPers) return false;
  if (!((rs.Personnes && e.IsPersonne()) || (rs.Temoins && e.IsTemoin()))) return false;
  char sexe = rs.Sexe;
  if (rs.Hommes != rs.Femmes) sexe = rs.Hommes ? 'M' : 'F';
  if (sexe != '?') {
    const char s = e.Sexe == 0 ? ' ' : e.Sexe;
    if (s != sexe) return false;
  }
  if (rs.AvecPeriode) {
    // Une vie dont aucune borne n'est connue ne se place dans aucune période ; une borne
    // inconnue seule laisse ce côté ouvert.
    if (e.AnneeMin == 0 && e.AnneeMax == 0) return false;
    const int bas = e.AnneeMin != 0 ? e.AnneeMin : INT_MIN;
    const int haut = e.AnneeMax != 0 ? e.AnneeMax : INT_MAX;
    if (haut < rs.AnneeDebut || bas > rs.AnneeFin) return false;
  }
  return true;
}

bool TGestEltIndex::PersonneValide(long no) {
  if (no <= 0) return false;
  if (!Personnes) return true;
  if (no > Personnes->NbEnreg()) return false;
  const auto n = static_cast<size_t>(no);
  if (ValiditeEcritures != Personnes->NbEcritures()) {
    Validite.assign(Validite.size(), 0);
    ValiditeEcritures = Personnes->NbEcritures();
  }
  if (Validite.size() <= n) Validite.resize(std::max<size_t>(n + 1, static_cast<size_t>(Personnes->NbEnreg()) + 1), 0);
  if (Validite[n] == 0) {
    TEnregPersonne e{};
    Validite[n] = Personnes->LitEnreg(no, e) && e.Supprime != 'O' ? 1 : 2;
  }
  return Validite[n] == 1;
}

bool TGestEltIndex::CriterePersonne(const TRechSimple& rs, long no) {
  if (!PersonneValide(no)) return false;
  const bool conjoint = !rs.NomConjoint.empty() || !rs.PrenomsConjoint.empty();
  const bool parents = !rs.Parents.empty() || rs.AvecParents || rs.Pere != 0 || rs.Mere != 0;
  const bool liens = rs.SansConjoint || rs.SansEnfant || rs.NbConjointsMin > 0 || rs.NbEnfantsMin > 0;
  const bool exclusions = !rs.Exclus.empty() || rs.NoExclu != -1 || rs.ExcluPere != 0 || rs.ExcluMere != 0;
  const bool fait = !Trim(rs.Evenement).empty();
  if (!conjoint && !parents && !liens && !exclusions && !fait) return true;
  if (!Personnes) return !conjoint && !parents && !liens && !fait && !IsExclu(no, &rs);

  // Les faits ne se lisent que s'ils sont demandés : c'est la base qu'on interroge alors.
  const TPerson p(Personnes, no, fait);
  if (p.FicheSupprimee()) return false;
  if (fait) {
    bool trouve = false;
    if (const auto* evens = p.Evens())
      for (const auto& ev : *evens)
        if (!trouve && CompareEvent(ev.Enreg, rs.Evenement, rs.DonneeEvenement, rs.EvenAnneeDebut, rs.EvenAnneeFin))
          trouve = true;
    // Un champ simple n'a pas de date : il ne répond pas quand une période est demandée.
    if (const auto* chps = p.Chps(); chps && rs.EvenAnneeDebut == 0 && rs.EvenAnneeFin == 0)
      for (const auto& chp : *chps)
        if (!trouve && CompareChps(chp.Enreg, rs.Evenement, rs.DonneeEvenement)) trouve = true;
    if (!trouve) return false;
  }
  if (parents) {
    for (const std::string& c : Elements(rs.Parents, ';')) {
      const std::string f = FormatIndex(c);
      if (EstSpecial(f, kSansPere) && p.Enreg.Pere.No > 0) return false;
      if (EstSpecial(f, kSansMere) && p.Enreg.Mere.No > 0) return false;
    }
    if (rs.AvecParents && (p.Enreg.Pere.No <= 0 || p.Enreg.Mere.No <= 0)) return false;
    if (rs.Pere != 0 && p.Enreg.Pere.No != rs.Pere) return false;
    if (rs.Mere != 0 && p.Enreg.Mere.No != rs.Mere) return false;
  }
  if (liens) {
    const int nbConj = p.CompteNbConjoint();
    const int nbEnf = p.CompteNbEnfant();
    if (rs.SansConjoint && nbConj > 0) return false;
    if (rs.SansEnfant && nbEnf > 0) return false;
    if (nbConj < rs.NbConjointsMin || nbEnf < rs.NbEnfantsMin) return false;
  }
  if (conjoint) {
    // Chaque nom et chaque prénom du critère du conjoint, jugés sur les lignes d'index du
    // conjoint comme ceux de la personne sur les siennes : il suffit qu'un conjoint réponde à
    // un couple.
    std::vector<std::string> nomsC = Elements(rs.NomConjoint, ';');
    std::vector<std::string> prenomsC = Elements(rs.PrenomsConjoint, ' ');
    if (nomsC.empty()) nomsC.push_back("");
    if (prenomsC.empty()) prenomsC.push_back("");
    std::vector<TCritere> critNoms, critPrenoms;
    for (const std::string& n : nomsC) critNoms.emplace_back(FormeCritere(n, true), kSansNom);
    for (const std::string& n : prenomsC) critPrenoms.emplace_back(FormeCritere(n, false), kSansPrenom);
    bool trouve = false;
    for (int i = 0; i < TPerson::NbConjoints && !trouve; ++i) {
      const long c = p.Enreg.Conjoints[i].No;
      if (c <= 0 || !PersonneValide(c)) continue;
      for (const TCritere& n : critNoms)
        for (const TCritere& pr : critPrenoms)
          if (!trouve && LignesRepondent(c, n, pr, rs.SoundexConjoint)) trouve = true;
    }
    if (!trouve) return false;
  }
  return !exclusions || !IsExclu(no, &rs);
}

// --- Tests sur une personne ---

bool TGestEltIndex::CompareNom(const std::string& noms, const std::string& critere, bool soundex) {
  return ElementRepond(Elements(noms, ';'), critere, kSansNom, soundex);
}

bool TGestEltIndex::ComparePrenoms(const std::string& prenoms, const std::string& critere, bool soundex) {
  return ElementRepond(Elements(prenoms, ' '), critere, kSansPrenom, soundex);
}

bool TGestEltIndex::CompareNomPrenoms(const TPerson& p, const std::string& nom, const std::string& prenom,
                                      bool soundexNom, bool soundexPrenom) {
  std::string noms(p.Enreg.Nom, strnlen(p.Enreg.Nom, sizeof p.Enreg.Nom));
  std::string prenoms(p.Enreg.Prenoms, strnlen(p.Enreg.Prenoms, sizeof p.Enreg.Prenoms));
  return CompareNom(noms, nom, soundexNom) && ComparePrenoms(prenoms, prenom, soundexPrenom);
}

namespace {

// Un libellé du catalogue comparé à un masque tapé : capitales, blancs autour ôtés.
bool LibelleRepond(const std::string& libelle, const std::string& masque) {
  if (Trim(masque).empty()) return true;
  return StrCmpMasque(UpperANSIChaineAS(Trim(libelle), 2).c_str(), UpperANSIChaineAS(Trim(masque), 2).c_str()) == 0;
}

// Une donnée comparée à un masque tapé, toutes deux pliées comme un nom.
bool DonneeRepond(const std::string& donnee, const std::string& masque) {
  if (Trim(masque).empty()) return true;
  return StrCmpMasque(FormatIndex(donnee).c_str(), FormatCritere(masque).c_str()) == 0;
}

}  // namespace

bool TGestEltIndex::CompareEvent(const TEvenement::TEnreg& ev, const std::string& libelle, const std::string& donnee,
                                 int anneeDebut, int anneeFin) {
  if (!LibelleRepond(ev.Libelle, libelle) || !DonneeRepond(ev.Donnee, donnee)) return false;
  if (anneeDebut == 0 && anneeFin == 0) return true;
  TDateRQ d = ev.Date;
  int mn = 0, mx = 0;
  const int annee = d.RecupAnnee(true, &mn, &mx);
  if (annee == 0 && mn == 0 && mx == 0) return false;
  // Une fourchette ouverte d'un côté laisse ce côté ouvert.
  const int bas = mn != 0 ? mn : (mx != 0 ? INT_MIN : annee);
  const int haut = mx != 0 ? mx : (mn != 0 ? INT_MAX : annee);
  return !(anneeDebut != 0 && haut < anneeDebut) && !(anneeFin != 0 && bas > anneeFin);
}

bool TGestEltIndex::CompareChps(const TChpsSimple::TEnreg& chp, const std::string& libelle,
                                const std::string& donnee) {
  return LibelleRepond(chp.Libelle, libelle) && DonneeRepond(chp.Donnee, donnee);
}

bool TGestEltIndex::IsPrenomsCorrespond(const std::string& prenoms, const std::string& critere) {
  for (const std::string& c : Elements(critere, ' '))
    if (ComparePrenoms(prenoms, FormatCritere(c), false)) return true;
  return Elements(critere, ' ').empty();
}

// --- Exclusions ---

bool TGestEltIndex::IsExclu(long no, const TRechSimple* rs) {
  if (!rs) return false;
  const bool parLignee = rs->ExcluParPere || rs->ExcluParMere;
  if (rs->Exclus.empty() && rs->NoExclu == -1 && rs->ExcluPere == 0 && rs->ExcluMere == 0) return false;
  if (rs->Exclus.count(no) != 0 || no == rs->NoExclu) return true;
  if (!Personnes || no <= 0 || no > Personnes->NbEnreg()) return false;
  if (rs->ExcluPere != 0 || rs->ExcluMere != 0) {
    TEnregPersonne e{};
    if (!Personnes->LitEnreg(no, e)) return false;
    return (rs->ExcluPere != 0 && e.Pere.No == rs->ExcluPere) || (rs->ExcluMere != 0 && e.Mere.No == rs->ExcluMere);
  }
  return parLignee && IsExcluParentsRecursif(rs->Profondeur + 1, no, rs);
}

bool TGestEltIndex::IsExcluParentsRecursif(int profondeur, long no, const TRechSimple* rs) {
  if (!rs || !Personnes || profondeur <= 0) return false;
  // Génération par génération, chaque ancêtre vu une fois : un cycle de parents (fichier
  // abîmé) ou un implexe ne font ni boucler ni exploser la remontée.
  std::set<long> vus{no};
  std::vector<long> generation{no};
  for (int g = 0; g < profondeur && !generation.empty(); ++g) {
    std::vector<long> suivante;
    for (long n : generation) {
      if (n <= 0 || n > Personnes->NbEnreg()) continue;
      TEnregPersonne e{};
      if (!Personnes->LitEnreg(n, e)) continue;
      for (int cote = 0; cote < 2; ++cote) {
        if (cote == 0 ? !rs->ExcluParPere : !rs->ExcluParMere) continue;
        const long parent = cote == 0 ? e.Pere.No : e.Mere.No;
        if (parent <= 0) continue;
        if (rs->Exclus.count(parent) != 0 || parent == rs->NoExclu) return true;
        if (vus.insert(parent).second) suivante.push_back(parent);
      }
    }
    generation.swap(suivante);
  }
  return false;
}

void TGestEltIndex::PrepareSoundex() {
  if (SoundexNb == GetNbElt() && SoundexUtilise == TailleUtilisee()) return;
  const long n = GetNbElt();
  // Seul le soundex du nom sert : il est pris dans les octets de la ligne (deux textes comptés
  // sautés), sans relire la ligne entière. Un texte abîmé se lit comme TEltIndex::Lit le lit.
  std::vector<uint64_t> cles(static_cast<size_t>(n));
  for (long r = 0; r < n; ++r) {
    long lisibles = 0;
    const char* p = Octets(r, &lisibles);
    if (!p) {
      cles[size_t(r)] = uint64_t(uint32_t(r));
      continue;
    }
    const char* fin = p + lisibles;
    auto compte = [&]() -> size_t {
      const size_t l = p < fin ? uint8_t(*p++) : 0;
      return std::min(l, size_t(fin - p));
    };
    for (int texte = 0; texte < 2; ++texte) p += compte();
    char soundex[kTailleSoundex] = {};
    const size_t l = compte();
    std::memcpy(soundex, p, std::min(l, kTailleSoundex - 1));
    cles[size_t(r)] = (uint64_t(CodeSoundex(soundex)) << 32) | uint64_t(uint32_t(r));
  }
  // Les rangs viennent croissants : un tri stable sur le seul code (quatre passes d'un octet)
  // range le tout, sans comparaisons.
  ParSoundex.resize(cles.size());
  for (int octet = 4; octet < 8; ++octet) {
    size_t places[257] = {};
    for (uint64_t c : cles) ++places[((c >> (8 * octet)) & 0xFF) + 1];
    for (int i = 0; i < 256; ++i) places[i + 1] += places[i];
    for (uint64_t c : cles) ParSoundex[places[(c >> (8 * octet)) & 0xFF]++] = c;
    cles.swap(ParSoundex);
  }
  ParSoundex.swap(cles);
  SoundexNb = n;
  SoundexUtilise = TailleUtilisee();
}

// --- Listes de valeurs ---

long TGestEltIndex::PremierRangNom(const std::string& nom) const {
  long bas = 0, haut = GetNbElt();
  TEltIndex elt;
  while (bas < haut) {
    const long milieu = bas + (haut - bas) / 2;
    Lit(milieu, elt);
    const int c = std::strcmp(elt.Enreg.Nom, nom.c_str());
    if (c < 0)
      bas = milieu + 1;
    else
      haut = milieu;
  }
  return bas;
}

void TGestEltIndex::RetournePatronyme(std::vector<std::string>& liste, const std::string& debut) const {
  liste.clear();
  TEltIndex elt;
  for (long r = debut.empty() ? 0 : PremierRangNom(debut); r < GetNbElt(); ++r) {
    Lit(r, elt);
    if (!CommencePar(elt.Enreg.Nom, debut)) break;
    if (elt.Enreg.Nom[0] == 0 || elt.Enreg.FicheSupprimee == 'O') continue;
    if (liste.empty() || liste.back() != elt.Enreg.Nom) liste.emplace_back(elt.Enreg.Nom);
  }
}

void TGestEltIndex::RetournePrenoms(const std::string& nom, std::vector<std::string>& liste) const {
  liste.clear();
  std::set<std::string> vus;
  TEltIndex elt;
  for (long r = PremierRangNom(nom); r < GetNbElt(); ++r) {
    Lit(r, elt);
    if (nom != elt.Enreg.Nom) break;
    if (elt.Enreg.Prenom[0] != 0 && elt.Enreg.FicheSupprimee != 'O') vus.insert(elt.Enreg.Prenom);
  }
  liste.assign(vus.begin(), vus.end());
}

void TGestEltIndex::RetourneToutPrenom(std::vector<std::string>& liste) const {
  std::set<std::string> vus;
  TEltIndex elt;
  for (long r = 0; r < GetNbElt(); ++r) {
    Lit(r, elt);
    if (elt.Enreg.Prenom[0] != 0 && elt.Enreg.FicheSupprimee != 'O') vus.insert(elt.Enreg.Prenom);
  }
  liste.assign(vus.begin(), vus.end());
}

namespace {
TModuleBDD* BaseDe(TFicPersons* fic) {
  TContexteDossier* gest = fic ? fic->Gest() : nullptr;
  TModuleBDD* bdd = gest ? gest->ModuleBDD() : nullptr;
  return bdd && bdd->EstOuverte() ? bdd : nullptr;
}
}  // namespace

void TGestEltIndex::RetournePatronymeLieu(long lieu, std::vector<std::string>& liste) const {
  liste.clear();
  TModuleBDD* bdd = BaseDe(Personnes);
  if (!bdd || lieu <= 0) return;
  std::set<long> personnes;
  bdd->ListePersonneLieux(lieu, personnes);
  std::set<std::string> noms;
  TEltIndex elt;
  for (long r = 0; r < GetNbElt() && !personnes.empty(); ++r) {
    Lit(r, elt);
    if (elt.Enreg.Nom[0] != 0 && elt.Enreg.FicheSupprimee != 'O' && personnes.count(elt.Enreg.NoPers))
      noms.insert(elt.Enreg.Nom);
  }
  liste.assign(noms.begin(), noms.end());
}

void TGestEltIndex::RetourneLieux(std::vector<std::string>& liste) const {
  liste.clear();
  TModuleBDD* bdd = BaseDe(Personnes);
  TVoisinsPersonne* voisins = VoisinsDe(Personnes ? Personnes->Gest() : nullptr);
  TFicDupli* lieux = voisins ? voisins->FicLie() : nullptr;
  if (!bdd || !lieux) return;
  std::set<long> numeros;
  bdd->Protege([&] {
    SQLite::Statement& q = bdd->Requete(
        "SELECT DISTINCT \"Lieu\" FROM \"Evenements\" WHERE \"Lieu\" > 0 AND (\"NoPersA\" > 0 OR \"NoPersB\" > 0)");
    while (q.executeStep()) numeros.insert(static_cast<long>(q.getColumn(0).getInt64()));
    q.tryReset();
  });
  std::set<std::string> communes;
  for (const long n : numeros) {
    if (n > lieux->NbFiches()) continue;
    const std::string commune = lieux->RetCommune(n);
    if (!commune.empty()) communes.insert(commune);
  }
  liste.assign(communes.begin(), communes.end());
}

void TGestEltIndex::RetourneProfession(std::vector<std::string>& liste) const {
  liste.clear();
  TModuleBDD* bdd = BaseDe(Personnes);
  if (!bdd) return;
  std::set<std::string> professions;
  bdd->Protege([&] {
    SQLite::Statement& q = bdd->Requete(
        "SELECT DISTINCT \"Donnee\" FROM \"Evenements\" WHERE \"LibelleChamps\" = 'PROFESSION' AND "
        "(\"NoPersA\" > 0 OR \"NoPersB\" > 0)");
    while (q.executeStep()) {
      const std::string valeur = Trim(TModuleBDD::TexteColonne(q, 0));
      if (!valeur.empty()) professions.insert(valeur);
    }
    q.tryReset();
  });
  liste.assign(professions.begin(), professions.end());
}

void TGestEltIndex::RetourneListPatronyme(std::map<std::string, long>& compte) const {
  compte.clear();
  TEltIndex elt;
  std::string courant;
  std::set<long> personnes;
  auto range = [&] {
    if (!courant.empty()) compte[courant] = long(personnes.size());
    personnes.clear();
  };
  for (long r = 0; r < GetNbElt(); ++r) {
    Lit(r, elt);
    if (courant != elt.Enreg.Nom) {
      range();
      courant = elt.Enreg.Nom;
    }
    if (elt.Enreg.FicheSupprimee != 'O' && elt.Enreg.NoPers > 0) personnes.insert(elt.Enreg.NoPers);
  }
  range();
}

void TGestEltIndex::RetourneListPrenom(std::map<std::string, long>& compte) const {
  compte.clear();
  std::map<std::string, std::set<long>> porteurs;
  TEltIndex elt;
  for (long r = 0; r < GetNbElt(); ++r) {
    Lit(r, elt);
    if (elt.Enreg.Prenom[0] != 0 && elt.Enreg.FicheSupprimee != 'O' && elt.Enreg.NoPers > 0)
      porteurs[elt.Enreg.Prenom].insert(elt.Enreg.NoPers);
  }
  for (const auto& [prenom, p] : porteurs) compte[prenom] = long(p.size());
}

// --- Lignes d'une personne ---

void TGestEltIndex::ChercheClefPersNo(long no, std::vector<long>& rangs) const {
  rangs.clear();
  TEltIndex elt;
  for (long r = 0; r < GetNbElt(); ++r) {
    Lit(r, elt);
    if (elt.Enreg.NoPers == no) rangs.push_back(r);
  }
}

long TGestEltIndex::SupprimeClefPersNo(long no) {
  std::vector<long> rangs;
  ChercheClefPersNo(no, rangs);
  TEltIndex travail;
  // Du dernier au premier : les rangs d'avant ne bougent pas.
  for (auto it = rangs.rbegin(); it != rangs.rend(); ++it) Supprime(*it, travail);
  InvalideSoundex();
  return long(rangs.size());
}

void TGestEltIndex::InitClefIndexOfNoPers() {
  ParPersonne.clear();
  ParPersonne.reserve(size_t(GetNbElt()));
  TEltIndex e;
  for (long r = 0; r < GetNbElt(); ++r) {
    Lit(r, e);
    if (e.Enreg.NoPers > 0) ParPersonne.push_back((uint64_t(uint32_t(e.Enreg.NoPers)) << 32) | uint64_t(uint32_t(r)));
  }
  std::sort(ParPersonne.begin(), ParPersonne.end());
  ParPersonneNb = GetNbElt();
  ParPersonneUtilise = TailleUtilisee();
}

long TGestEltIndex::FindClefIndexOfNoPers(long no) {
  if (no <= 0 || no > INT32_MAX) return -1;
  if (ParPersonneNb != GetNbElt() || ParPersonneUtilise != TailleUtilisee()) InitClefIndexOfNoPers();
  const uint64_t cle = uint64_t(no) << 32;
  auto it = std::lower_bound(ParPersonne.begin(), ParPersonne.end(), cle);
  if (it == ParPersonne.end() || (*it >> 32) != uint64_t(no)) return -1;
  // Les rangs d'une personne se suivent dans le classement : le premier est le plus petit.
  const long rang = long(*it & 0xFFFFFFFFULL);
  // Un classement en retard sur un changement que la taille ne montre pas : la ligne relue
  // le dit, et il est refait.
  TEltIndex e;
  Lit(rang, e);
  if (e.Enreg.NoPers == no) return rang;
  InitClefIndexOfNoPers();
  it = std::lower_bound(ParPersonne.begin(), ParPersonne.end(), cle);
  return it != ParPersonne.end() && (*it >> 32) == uint64_t(no) ? long(*it & 0xFFFFFFFFULL) : -1;
}

void TGestEltIndex::ChercheClefPersNo2(long no, std::vector<long>& rangs) {
  rangs.clear();
  if (no <= 0 || no > INT32_MAX) return;
  if (ParPersonneNb != GetNbElt() || ParPersonneUtilise != TailleUtilisee()) InitClefIndexOfNoPers();
  TEltIndex e;
  for (auto it = std::lower_bound(ParPersonne.begin(), ParPersonne.end(), uint64_t(no) << 32);
       it != ParPersonne.end() && (*it >> 32) == uint64_t(no); ++it) {
    const long rang = long(*it & 0xFFFFFFFFULL);
    Lit(rang, e);
    // Un classement en retard ne donne qu'une ligne d'une autre personne : elle ne compte pas.
    if (e.Enreg.NoPers == no) rangs.push_back(rang);
  }
}

bool TGestEltIndex::LignesRepondent(long no, const TCritere& nom, const TCritere& prenom, bool soundex) {
  std::vector<long> rangs;
  ChercheClefPersNo2(no, rangs);
  TEltIndex e;
  for (long rang : rangs) {
    Lit(rang, e);
    if (e.Enreg.FicheSupprimee != 'O' && nom.Repond(e.Enreg.Nom, e.Enreg.NomSoundex, soundex) &&
        prenom.Repond(e.Enreg.Prenom, e.Enreg.PrenomSoundex, soundex))
      return true;
  }
  return false;
}

}  // namespace rqbase
