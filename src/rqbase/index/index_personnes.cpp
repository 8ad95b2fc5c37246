// L'index des personnes : lignes de IndexNomPrenoms, table en mémoire tenue égale, fichier .prx.
#include "rqbase/index/index_personnes.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <sstream>

#include "rqbase/index/bo_chn.h"
#include "rqbase/index/particules.h"
#include "rqbase/index/soundex.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/person/voisins_personne.h"
#include "rqbase/platform/chemins.h"
#include "rqbase/platform/fichier.h"
#include "rqbase/platform/journal.h"
#include "rqbase/platform/progression.h"
#include "rqbase/platform/remplacement.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/storage/schema_bdd.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/flux.h"
#include "rqbase/util/majuscules.h"

namespace fs = std::filesystem;

namespace rqbase {

namespace {

constexpr const char* kTable = "IndexNomPrenoms";
constexpr const char* kColonnes =
    "\"ID\", \"Nom\", \"Prenom\", \"NomSoundex\", \"PrenomSoundex\", \"AnneeMin\", \"AnneeMax\", \"NoPers\", "
    "\"RgNom\", \"RgPrenom\", \"RgPrenomUsuel\", \"TypePersonne\", \"FicheSupprimee\", \"Sexe\"";
constexpr int kMaxLignesParPersonne = 10;
constexpr const char* kInsertion =
    "INSERT INTO \"IndexNomPrenoms\" (\"Nom\", \"Prenom\", \"NomSoundex\", \"PrenomSoundex\", \"AnneeMin\", "
    "\"AnneeMax\", \"NoPers\", \"RgNom\", \"RgPrenom\", \"RgPrenomUsuel\", \"TypePersonne\", \"FicheSupprimee\", "
    "\"Sexe\") VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
// Une ligne sérialisée et son décalage dans l'index : la taille qu'un fichier d'index honnête
// ne dépasse pas, par ligne de la table.
constexpr int64_t kOctetsParLigneMax = TEltIndex::kTailleMax + 4;

// Une transaction autour des écritures d'une personne, sauf si une est déjà ouverte (import) :
// la personne s'écrit d'un bloc, et une seule synchronisation du disque la couvre.
class TBlocIndex {
 public:
  explicit TBlocIndex(TModuleBDD& bdd) : Bdd(bdd) {
    if (sqlite3_get_autocommit(Bdd.Base().getHandle()) != 0) {
      Bdd.Protege([&] { Bdd.Requete("BEGIN").exec(); });
      Ouvert = true;
    }
  }
  ~TBlocIndex() {
    if (!Ouvert) return;
    try {
      Bdd.Requete("ROLLBACK").tryExecuteStep();
    } catch (...) {
      // Un destructeur ne lève pas ; une connexion perdue a déjà tout défait.
    }
  }
  void Valide() {
    if (!Ouvert) return;
    Bdd.Protege([&] { Bdd.Requete("COMMIT").exec(); });
    Ouvert = false;
  }

 private:
  TModuleBDD& Bdd;
  bool Ouvert = false;
};

std::string Car(char c) {
  return c == 0 ? std::string() : std::string(1, c);
}

// Un texte de colonne posé dans son tableau ; rend sa longueur d'origine. Les textes de l'index
// sont presque toujours en ASCII, identique en UTF-8 : ils se copient sans conversion ni
// allocation (la mémoire d'un million de personnes se refait depuis quatre millions de lignes).
size_t TexteDans(SQLite::Statement& q, int colonne, char* dest, size_t taille) {
  const SQLite::Column c = q.getColumn(colonne);
  const char* t = c.getText();
  const size_t n = size_t(c.getBytes());
  bool ascii = true;
  for (size_t i = 0; i < n && ascii; ++i) ascii = uint8_t(t[i]) < 0x80 && t[i] != 0;
  if (ascii) {
    const size_t garde = std::min(n, taille - 1);
    std::memcpy(dest, t, garde);
    std::memset(dest + garde, 0, taille - garde);
    return n;
  }
  const std::string s = TModuleBDD::TexteColonne(q, colonne);
  TEnregIndex::Pose(dest, taille, s);
  return s.size();
}

char CarColonne(SQLite::Statement& q, int colonne) {
  char c[2];
  TexteDans(q, colonne, c, sizeof c);
  return c[0];
}

// Les 13 colonnes liées à partir du paramètre `premier`.
void LieColonnes(SQLite::Statement& q, int premier, const TEnregIndex& e) {
  int i = premier;
  TModuleBDD::LieTexte(q, i++, e.Nom);
  TModuleBDD::LieTexte(q, i++, e.Prenom);
  TModuleBDD::LieTexte(q, i++, e.NomSoundex);
  TModuleBDD::LieTexte(q, i++, e.PrenomSoundex);
  q.bind(i++, int(e.AnneeMin));
  q.bind(i++, int(e.AnneeMax));
  q.bind(i++, int64_t(e.NoPers));
  q.bind(i++, int(e.RgNom));
  q.bind(i++, int(e.RgPrenom));
  q.bind(i++, int(e.RgPrenomUsuel));
  TModuleBDD::LieTexte(q, i++, Car(e.TypePersonne));
  TModuleBDD::LieTexte(q, i++, Car(e.FicheSupprimee));
  TModuleBDD::LieTexte(q, i++, Car(e.Sexe == ' ' ? char(0) : e.Sexe));
}

int16_t Entier16(SQLite::Statement& q, int colonne) {
  const int64_t v = q.getColumn(colonne).getInt64();
  return (v < INT16_MIN || v > INT16_MAX) ? int16_t(0) : int16_t(v);
}

// Une ligne lue (ID puis les 13 colonnes) ; les textes sont coupés à leur place, leurs
// longueurs d'origine gardées pour le jugement.
void LitColonnes(SQLite::Statement& q, TIndexPerson& ip) {
  ip.ID = long(q.getColumn(0).getInt64());
  TEnregIndex& e = ip.Enreg;
  ip.LongueurNomLu = TexteDans(q, 1, e.Nom, sizeof e.Nom);
  ip.LongueurPrenomLu = TexteDans(q, 2, e.Prenom, sizeof e.Prenom);
  TexteDans(q, 3, e.NomSoundex, sizeof e.NomSoundex);
  TexteDans(q, 4, e.PrenomSoundex, sizeof e.PrenomSoundex);
  e.AnneeMin = Entier16(q, 5);
  e.AnneeMax = Entier16(q, 6);
  const int64_t no = q.getColumn(7).getInt64();
  e.NoPers = (no < INT32_MIN || no > INT32_MAX) ? -1 : int32_t(no);
  e.RgNom = Entier16(q, 8);
  e.RgPrenom = Entier16(q, 9);
  e.RgPrenomUsuel = Entier16(q, 10);
  e.TypePersonne = CarColonne(q, 11);
  e.FicheSupprimee = CarColonne(q, 12);
  e.Sexe = CarColonne(q, 13);
  if (e.Sexe == ' ') e.Sexe = 0;
}

// Contrôle des octets du fichier : FNV-1a sur 64 bits pris par mots de 8 octets
// petit-boutistes (le dernier complété de zéros), la longueur mêlée à la fin. Un mot à la fois
// plutôt qu'un octet : le fichier d'un million de personnes se vérifie huit fois plus vite.
uint64_t Controle(const char* p, size_t n) {
  uint64_t h = 14695981039346656037ULL;
  size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    uint64_t mot;
    std::memcpy(&mot, p + i, 8);
    h = (h ^ mot) * 1099511628211ULL;
  }
  uint64_t mot = 0;
  std::memcpy(&mot, p + i, n - i);
  h = (h ^ mot) * 1099511628211ULL;
  return (h ^ uint64_t(n)) * 1099511628211ULL;
}

// Un tampon de flux sur des octets déjà en mémoire, positionnable (ipstream mesure d'avance
// ce qui reste) : un fichier d'index de 200 Mo se relit sans être recopié.
class TTamponMemoire : public std::streambuf {
 public:
  TTamponMemoire(const char* p, size_t n) {
    char* d = const_cast<char*>(p);
    setg(d, d, d + n);
  }

 protected:
  pos_type seekoff(off_type dep, std::ios_base::seekdir dir, std::ios_base::openmode) override {
    char* base = eback();
    const off_type taille = egptr() - base;
    off_type cible = dir == std::ios_base::beg ? dep : dir == std::ios_base::cur ? (gptr() - base) + dep : taille + dep;
    if (cible < 0 || cible > taille) return pos_type(off_type(-1));
    setg(base, base + cible, egptr());
    return pos_type(cible);
  }
  pos_type seekpos(pos_type pos, std::ios_base::openmode mode) override {
    return seekoff(off_type(pos), std::ios_base::beg, mode);
  }
};

}  // namespace

// ===== TIndexPerson =====

TIndexPerson::TIndexPerson(TFicIndexPerson* fic, long id) : Fic(fic) {
  if (id >= 1 || id == -2) Lecture(id);
}

bool TIndexPerson::Lecture(long id) {
  if (id == -3) id = ID;
  TModuleBDD* bdd = Fic && Fic->Contexte ? Fic->Contexte->ModuleBDD() : nullptr;
  if (id == -1) {
    if (!Fic || !Fic->Parcours) return false;
    LitColonnes(*Fic->Parcours, *this);
    return true;
  }
  Enreg = TEnregIndex();
  ID = 0;
  if (!bdd || !bdd->EstOuverte()) return false;
  return bdd->Protege([&] {
    SQLite::Statement& q =
        bdd->Requete(std::string("SELECT ") + kColonnes + " FROM \"" + kTable + "\" WHERE \"ID\" = ?");
    q.bind(1, int64_t(id));
    if (!q.executeStep()) return false;
    LitColonnes(q, *this);
    q.tryReset();
    return true;
  });
}

long TIndexPerson::Enregistrement(long id, TFicIndexPerson* fic, bool nouveau) {
  if (fic) Fic = fic;
  if (!Fic || !Fic->PeutEcrire()) return -1;
  TModuleBDD& bdd = *Fic->Contexte->ModuleBDD();
  return bdd.Protege([&]() -> long {
    if (!nouveau) {
      SQLite::Statement& q = bdd.Requete(std::string("SELECT \"NoPers\" FROM \"") + kTable + "\" WHERE \"ID\" = ?");
      q.bind(1, int64_t(id));
      if (!q.executeStep()) return -1;
      const int64_t stocke = q.getColumn(0).getInt64();
      q.tryReset();
      if (stocke != Enreg.NoPers) {
        // La ligne est celle d'une autre personne : on n'y touche pas, la vérification de
        // l'index la reprendra.
        AddLog("Erreur modif Index");
        AddLog("Nom : " + std::string(Enreg.Nom) + ", Prenoms :" + Enreg.Prenom + ", ID : " + std::to_string(id) +
               " , ID-Conflit : " + std::to_string(stocke));
        return -1;
      }
      SQLite::Statement& m =
          bdd.Requete(std::string("UPDATE \"") + kTable +
                      "\" SET \"Nom\" = ?, \"Prenom\" = ?, \"NomSoundex\" = ?, \"PrenomSoundex\" = ?, "
                      "\"AnneeMin\" = ?, \"AnneeMax\" = ?, \"NoPers\" = ?, \"RgNom\" = ?, "
                      "\"RgPrenom\" = ?, \"RgPrenomUsuel\" = ?, \"TypePersonne\" = ?, "
                      "\"FicheSupprimee\" = ?, \"Sexe\" = ? WHERE \"ID\" = ?");
      LieColonnes(m, 1, Enreg);
      m.bind(14, int64_t(id));
      bdd.PostInTable(m);
      ID = id;
      return id;
    }
    SQLite::Statement& a = bdd.Requete(kInsertion);
    LieColonnes(a, 1, Enreg);
    ID = long(bdd.PostInTableIndex(a));
    return ID;
  });
}

void TIndexPerson::Set(TPerson* p) {
  Enreg = TEnregIndex();
  if (!p) return;
  Enreg.TypePersonne = p->Enreg.Type;
  Enreg.FicheSupprimee = p->Enreg.Supprime;
  Enreg.Sexe = p->Enreg.Sexe == ' ' ? char(0) : p->Enreg.Sexe;
  Enreg.NoPers = int32_t(p->No());
  short amin = 0, amax = 0;
  float fmin = 0, fmax = 0;
  if (Fic && Fic->Fourchette && Fic->Fourchette(*p, fmin, fmax)) SetAnneeMinAnneeMax(p, fmin, fmax, amin, amax);
  Enreg.AnneeMin = amin;
  Enreg.AnneeMax = amax;
}

void TIndexPerson::SetAnneeMinAnneeMax(TPerson* p, float min, float max, short& anneeMin, short& anneeMax) {
  (void)p;
  auto annee = [](float v) -> short {
    if (!std::isfinite(v) || v == 1000000.0f || v <= -32768.0f || v >= 32768.0f) return 0;
    return short(std::floor(v));
  };
  anneeMin = annee(min);
  anneeMax = annee(max);
}

bool TIndexPerson::EnregFoireux(const TEnreg& e) const {
  if (e.NoPers < 0) return true;
  TFicPersons* personnes = Fic && Fic->Contexte ? Fic->Contexte->FicPersons() : nullptr;
  if (personnes && e.NoPers > personnes->NbEnreg()) return true;
  return LongueurNomLu > 101 || LongueurPrenomLu > 71;
}

void TIndexPerson::GetIDIndexByNoPers(long no, std::vector<int>& ids) {
  ids.clear();
  TModuleBDD* bdd = Fic && Fic->Contexte ? Fic->Contexte->ModuleBDD() : nullptr;
  if (!bdd || !bdd->EstOuverte()) return;
  bdd->Protege([&] {
    // Du plus grand au plus petit : ModifClef reprend le dernier, si bien que la première
    // ligne de la personne retrouve le plus petit identifiant, comme à sa création.
    SQLite::Statement& q =
        bdd->Requete(std::string("SELECT \"ID\" FROM \"") + kTable + "\" WHERE \"NoPers\" = ? ORDER BY \"ID\" DESC");
    q.bind(1, int64_t(no));
    while (q.executeStep()) ids.push_back(int(q.getColumn(0).getInt64()));
    q.tryReset();
  });
}

// ===== TFicIndexPerson =====

TFicIndexPerson::TFicIndexPerson(TContexteDossier* gest, bool nouveau) : Contexte(gest) {
  if (nouveau) {
    if (PeutEcrire() || (Contexte && !Contexte->IsReadOnly())) EffaceFichier();
    Lignes = LectureEntete();
    return;
  }
  LectureEntete();
}

TFicIndexPerson::~TFicIndexPerson() {
  try {
    SauvegardeFichier();
  } catch (...) {
    // Un destructeur ne lève pas ; sans fichier, la prochaine ouverture refait la mémoire.
  }
}

std::string TFicIndexPerson::CheminFichier() const {
  return Contexte->FabriqueNomFichier(tfPrx);
}

bool TFicIndexPerson::PeutEcrire() const {
  if (!Contexte || !Contexte->PeutEcrire()) return false;
  TModuleBDD* bdd = Contexte->ModuleBDD();
  return bdd && bdd->EstOuverte() && !bdd->EstEnLectureSeule();
}

long TFicIndexPerson::LectureEntete() {
  Lignes = 0;
  TModuleBDD* bdd = Contexte ? Contexte->ModuleBDD() : nullptr;
  if (!bdd || !bdd->EstOuverte()) return 0;
  Lignes = bdd->Protege([&] {
    SQLite::Statement& q = bdd->Requete(std::string("SELECT COUNT(*) FROM \"") + kTable + "\"");
    long n = q.executeStep() ? long(q.getColumn(0).getInt64()) : 0;
    q.tryReset();
    return n;
  });
  return Lignes;
}

TFicIndexPerson::TControle TFicIndexPerson::ControleBase() {
  TControle c;
  c.Lignes = LectureEntete();
  TModuleBDD* bdd = Contexte ? Contexte->ModuleBDD() : nullptr;
  if (bdd && bdd->EstOuverte()) {
    c.IdMax = bdd->Protege([&] {
      SQLite::Statement& q = bdd->Requete(std::string("SELECT COALESCE(MAX(\"ID\"), 0) FROM \"") + kTable + "\"");
      long n = q.executeStep() ? long(q.getColumn(0).getInt64()) : 0;
      q.tryReset();
      return n;
    });
  }
  if (TVoisinsPersonne* v = VoisinsDe(Contexte)) c.IdGenea = v->GetIdGenea();
  return c;
}

void TFicIndexPerson::RelieTable() {
  if (!Memoire) return;
  Memoire->Personnes = Contexte ? Contexte->FicPersons() : nullptr;
  Memoire->NomsEquiv = NomsEquiv;
}

TGestEltIndex& TFicIndexPerson::Table() {
  if (!Memoire) Charge();
  return *Memoire;
}

void TFicIndexPerson::Raz() {
  Memoire.reset();
  DuFichier = false;
}

void TFicIndexPerson::Charge() {
  if (ChargeFichier()) {
    DuFichier = true;
    return;
  }
  ReinitTableIndexBis(nullptr);
}

bool TFicIndexPerson::ChargeFichier() {
  if (!Contexte) return false;
  const TControle attendu = ControleBase();
  auto f =
      TFichierBrut::Ouvre(CheminFichier(), TFichierBrut::TAcces::Lecture, TFichierBrut::TDisposition::Ouvre, false);
  if (!f) return false;
  const int64_t taille = f->Taille();
  // Un fichier plus grand que ce que la table peut donner ment : il n'est pas lu.
  if (taille < 0 || taille > (attendu.Lignes + 2) * kOctetsParLigneMax + 4096) return false;
  std::string octets(size_t(taille), '\0');
  if (f->LitA(0, octets.data(), octets.size()) != taille) return false;
  auto table = std::make_unique<TGestEltIndex>(attendu.Lignes + 2, 2000, 92);
  TControle lu;
  if (!LitFormeFichier(octets, *table, lu)) return false;
  if (lu.Lignes != attendu.Lignes || lu.IdMax != attendu.IdMax || lu.IdGenea != attendu.IdGenea) return false;
  Memoire = std::move(table);
  Session = attendu;
  RelieTable();
  return true;
}

std::string TFicIndexPerson::FormeFichier(const TGestEltIndex& table, const TControle& controle) {
  std::ostringstream sortie(std::ios::binary);
  opstream flux(sortie);
  flux.writeLong(kVersionFichier);
  table.Sauvegarde(flux);
  flux.writeLong(int32_t(controle.Lignes));
  flux.writeLong(int32_t(controle.IdMax));
  flux.writeString(controle.IdGenea);
  std::string octets = std::move(sortie).str();
  AjouteControle(octets);
  return octets;
}

void TFicIndexPerson::AjouteControle(std::string& octets) {
  const uint64_t c = Controle(octets.data(), octets.size());
  char fin[8];
  std::memcpy(fin, &c, 8);
  octets.append(fin, 8);
}

bool TFicIndexPerson::LitFormeFichier(const std::string& octets, TGestEltIndex& table, TControle& controle) {
  table.Raz();
  table.InvalideSoundex();
  controle = TControle();
  if (octets.size() < 8 + 4) return false;
  const size_t n = octets.size() - 8;
  uint64_t c;
  std::memcpy(&c, octets.data() + n, 8);
  if (c != Controle(octets.data(), n)) return false;
  TTamponMemoire tampon(octets.data(), n);
  std::istream entree(&tampon);
  ipstream flux(entree);
  if (flux.readLong() != kVersionFichier || !flux.Bon()) return false;
  if (!table.Restauration(flux, kVersionFichier)) {
    table.Raz();
    return false;
  }
  controle.Lignes = flux.readLong();
  controle.IdMax = flux.readLong();
  controle.IdGenea = flux.readString(4096);
  if (!flux.Bon() || flux.Restant() != 0) {
    table.Raz();
    controle = TControle();
    return false;
  }
  return true;
}

void TFicIndexPerson::EffaceFichier() {
  if (!Contexte) return;
  const std::string chemin = CheminFichier();
  std::error_code ec;
  // Seul un fichier ordinaire est effacé : ce qui se trouverait là d'autre (lien, tube) n'est
  // pas à nous, et il ne sera jamais lu ni remplacé non plus.
  if (fs::is_regular_file(fs::symlink_status(CheminOs(chemin), ec))) fs::remove(CheminOs(chemin), ec);
}

void TFicIndexPerson::SuitLeFichier() {
  // Avant la première modification d'une session, un fichier qui vaut est chargé : la mémoire
  // suit alors les modifications et le fichier est réécrit à la fermeture. Sans cela, la
  // première modification l'effacerait et chaque lecture suivante referait la mémoire depuis la
  // table (secondes à un million de personnes), jusqu'à une reconstruction. Sans fichier qui
  // vaille, seule la table change et la mémoire se fera depuis elle au premier usage.
  if (Modifiee || Memoire) return;
  if (ChargeFichier()) DuFichier = true;
}

void TFicIndexPerson::MarqueModifiee() {
  if (Modifiee) return;
  // Effacé avant la première écriture : un arrêt brutal ne laisse pas un fichier que la
  // table aurait dépassé.
  EffaceFichier();
  Modifiee = true;
}

bool TFicIndexPerson::SauvegardeFichier() {
  if (!Modifiee || !Memoire || !Contexte || Contexte->IsReadOnly() || Contexte->EcritureRatee()) return true;
  const std::string octets = FormeFichier(*Memoire, Session);
  if (!RemplaceFichier(CheminFichier(), octets)) return false;
  Modifiee = false;
  return true;
}

// --- Lignes d'une personne ---

std::vector<TEnregIndex> TFicIndexPerson::LignesDePersonne(TPerson& p, short anneeMin, short anneeMax) {
  TEnregIndex commun;
  commun.TypePersonne = p.Enreg.Type;
  commun.FicheSupprimee = p.Enreg.Supprime;
  commun.Sexe = p.Enreg.Sexe == ' ' ? char(0) : p.Enreg.Sexe;
  commun.NoPers = int32_t(p.No());
  commun.AnneeMin = anneeMin;
  commun.AnneeMax = anneeMax;

  // Les noms : chacun sans particule, en capitales nues, coupé à 20, nettoyé pour l'index.
  struct TTexte {
    std::string Texte;
    char Soundex[kTailleSoundex];
  };
  std::vector<TTexte> noms, prenoms;
  const std::string nomFiche(p.Enreg.Nom, strnlen(p.Enreg.Nom, sizeof p.Enreg.Nom));
  for (std::string_view brut : DecoupeElts(nomFiche, ';')) {
    const std::string n = CleNomIndex(brut);
    if (n.empty()) continue;
    TTexte t{n, {}};
    strSoundex(t.Texte.c_str(), t.Soundex);
    noms.push_back(t);
  }
  // Les prénoms, chacun rendu pour l'index (sans particule, capitales nues, caractères
  // d'index), coupé à 20 et débarrassé de ses blancs : la forme même d'un prénom cherché.
  const std::string prenomsFiche(p.Enreg.Prenoms, strnlen(p.Enreg.Prenoms, sizeof p.Enreg.Prenoms));
  for (std::string_view brut : DecoupeElts(prenomsFiche, ' ')) {
    const std::string n = ClePrenomIndex(brut);
    if (n.empty()) continue;
    TTexte t{n, {}};
    strSoundex(t.Texte.c_str(), t.Soundex);
    prenoms.push_back(t);
  }

  std::vector<TEnregIndex> lignes;
  const size_t nn = std::max<size_t>(noms.size(), 1), np = std::max<size_t>(prenoms.size(), 1);
  for (size_t i = 0; i < nn && lignes.size() < kMaxLignesParPersonne; ++i) {
    for (size_t j = 0; j < np && lignes.size() < kMaxLignesParPersonne; ++j) {
      TEnregIndex e = commun;
      if (i < noms.size()) {
        e.SetNom(noms[i].Texte);
        e.SetNomSoundex(noms[i].Soundex);
        e.RgNom = int16_t(i + 1);
      }
      if (j < prenoms.size()) {
        e.SetPrenom(prenoms[j].Texte);
        e.SetPrenomSoundex(prenoms[j].Soundex);
        e.RgPrenom = int16_t(j + 1);
      }
      lignes.push_back(e);
    }
  }
  return lignes;
}

std::string TFicIndexPerson::TransformeEnCaractereIndex(const std::string& texte) {
  return rqbase::TransformeEnCaractereIndex(texte);
}

// --- Mise à jour d'une personne ---

void TFicIndexPerson::ModifClef(TPerson* p, bool inutilise) {
  (void)inutilise;
  if (!p || p->No() <= 0) return;
  if (p->FicheSupprimee()) {
    SupprimeClef(p, true);
    return;
  }
  if (!PeutEcrire()) return;
  SuitLeFichier();
  TGestEltIndex* table = Memoire.get();
  TModuleBDD& bdd = *Contexte->ModuleBDD();

  TIndexPerson modele(this);
  modele.Set(p);
  const std::vector<TEnregIndex> lignes = LignesDePersonne(*p, modele.Enreg.AnneeMin, modele.Enreg.AnneeMax);
  std::vector<int> anciens;
  modele.GetIDIndexByNoPers(p->No(), anciens);

  // Ce que la mémoire devra faire, joué seulement une fois la base validée : une écriture qui
  // échoue laisse la mémoire égale à la table d'avant.
  enum class TGenre { Ajoute, Reclasse, Change, Ote };
  struct TOp {
    TGenre Genre;
    TEnregIndex Ancien, Nouveau;
    long ID;
  };
  std::vector<TOp> ops;
  std::vector<long> ids;
  long ajoutees = 0, otees = 0, idMax = Session.IdMax;

  MarqueModifiee();
  TBlocIndex bloc(bdd);
  for (const TEnregIndex& ligne : lignes) {
    TIndexPerson neuve(this);
    neuve.Enreg = ligne;
    if (anciens.empty()) {
      const long id = neuve.Enregistrement(0, this, true);
      if (id <= 0) continue;
      ops.push_back({TGenre::Ajoute, {}, ligne, id});
      ids.push_back(id);
      ++ajoutees;
      idMax = std::max(idMax, id);
      continue;
    }
    const long id = anciens.back();
    anciens.pop_back();
    if (id <= 0) {
      AddLog("Index des noms : identifiant vide pour la personne " + std::to_string(p->No()) + ", passé.");
      continue;
    }
    TIndexPerson vieille(this, id);
    const bool lue = vieille.ID == id;
    if (lue && vieille.Enreg.MemesColonnes(ligne) && vieille.LongueurNomLu <= 20 && vieille.LongueurPrenomLu <= 20) {
      ids.push_back(id);  // rien n'a changé : rien n'est écrit
      continue;
    }
    if (neuve.Enregistrement(id, this, false) < 0) continue;
    ids.push_back(id);
    if (lue && !vieille.EnregFoireux(vieille.Enreg)) {
      const bool reclasse =
          CompareLignesIndex(vieille.Enreg, ligne) != 0 || vieille.Enreg.TypePersonne != ligne.TypePersonne;
      ops.push_back({reclasse ? TGenre::Reclasse : TGenre::Change, vieille.Enreg, ligne, id});
    } else {
      ops.push_back({TGenre::Ajoute, {}, ligne, id});
    }
  }
  // Les identifiants restés de trop : lignes effacées, et ôtées de la mémoire avec elles.
  for (int id : anciens) {
    if (id <= 0) continue;
    TIndexPerson vieille(this, id);
    bdd.Protege([&] {
      SQLite::Statement& q = bdd.Requete(std::string("DELETE FROM \"") + kTable + "\" WHERE \"ID\" = ?");
      q.bind(1, int64_t(id));
      otees += bdd.PostInTable(q);
    });
    if (vieille.ID == id) ops.push_back({TGenre::Ote, vieille.Enreg, {}, id});
  }
  bloc.Valide();

  Session.Lignes += ajoutees - otees;
  Session.IdMax = idMax;
  TEltIndex travail;
  for (const TOp& op : ops) {
    if (!table) break;
    const TEltIndex nouveau(op.Nouveau, op.ID);
    const long rang = op.Genre == TGenre::Ajoute ? -1 : table->RechercheDicoth(TEltIndex(op.Ancien, op.ID), travail);
    switch (op.Genre) {
      case TGenre::Ajoute:
        table->AjouteClasse(nouveau, travail);
        break;
      case TGenre::Reclasse:
        if (rang < 0)
          table->AjouteClasse(nouveau, travail);
        else
          table->ChangeClasse(rang, nouveau, travail);
        break;
      case TGenre::Change:
        if (rang < 0)
          table->AjouteClasse(nouveau, travail);
        else
          table->Change(rang, nouveau, travail);
        break;
      case TGenre::Ote:
        if (rang >= 0) table->Supprime(rang, travail);
        break;
    }
  }
  if (table && !ops.empty()) table->InvalideSoundex();
  std::fill(std::begin(p->Enreg.Index), std::end(p->Enreg.Index), 0);
  for (size_t i = 0; i < ids.size() && i < 10; ++i) p->Enreg.Index[i] = int32_t(ids[i]);
}

void TFicIndexPerson::SupprimeClef(TPerson* p, bool table) {
  if (!p || p->No() <= 0 || !PeutEcrire()) return;
  SuitLeFichier();
  MarqueModifiee();
  if (table) {
    TModuleBDD& bdd = *Contexte->ModuleBDD();
    const int otees = bdd.Protege([&] {
      SQLite::Statement& q = bdd.Requete(std::string("DELETE FROM \"") + kTable + "\" WHERE \"NoPers\" = ?");
      q.bind(1, int64_t(p->No()));
      return bdd.PostInTable(q);
    });
    Session.Lignes -= otees;
  }
  if (Memoire) Memoire->SupprimeClefPersNo(p->No());
  std::fill(std::begin(p->Enreg.Index), std::end(p->Enreg.Index), 0);
}

// --- Reconstructions ---

bool TFicIndexPerson::ReinitTableIndex(TProgression* progression, const TAnneesConnues& connues, bool faitMemoire) {
  if (!PeutEcrire()) return false;
  TFicPersons* fic = Contexte->FicPersons();
  if (!fic) return false;
  TModuleBDD& bdd = *Contexte->ModuleBDD();
  if (fic->Cache()) fic->Cache()->RazBuffers();
  TProgression& prog = progression ? *progression : ProgressionMuette();
  prog.Titre("Création des index");
  prog.Texte("Traitement en cours...");
  const long dernier = fic->NbEnreg();
  prog.Maximum(dernier);
  prog.Position(0);
  MarqueModifiee();
  // La mémoire se fait des lignes au fil de leur écriture : la relire de la table redonnerait
  // les mêmes (textes exacts dans les deux sens, identifiants rendus par l'insertion).
  std::unique_ptr<TGestEltIndex> table;
  if (Memoire || faitMemoire) table = std::make_unique<TGestEltIndex>(dernier + 2, 2000, 92);
  long ecrites = 0;

  {
    // Une seule transaction : un abandon ou une panne laisse la table d'avant entière.
    TBlocIndex bloc(bdd);
    const TTableSchema* schema = TableSchema(kTable);
    bdd.Protege([&] {
      bdd.Base().exec(std::string("DROP TABLE IF EXISTS \"") + kTable + "\"");
      bdd.Base().exec(SqlCreationTable(*schema));
    });
    // Une requête préparée pour toutes les lignes, dans la transaction de la reconstruction.
    SQLite::Statement& ajout = bdd.Protege([&]() -> SQLite::Statement& { return bdd.Requete(kInsertion); });
    TIndexPerson juge(this);
    for (long no = 1; no <= dernier; ++no) {
      if ((no & 255) == 1) {
        prog.Position(no);
        if (prog.Abandon()) return false;
      }
      TPerson p(fic, no);
      if (p.FicheSupprimee()) continue;
      short anneeMin = 0, anneeMax = 0;
      if (!Fourchette || !connues || !connues(no, anneeMin, anneeMax)) {
        TIndexPerson modele(this);
        modele.Set(&p);
        anneeMin = modele.Enreg.AnneeMin;
        anneeMax = modele.Enreg.AnneeMax;
      }
      // La table est neuve : chaque ligne est une ligne neuve, sans rien à reprendre.
      for (const TEnregIndex& ligne : LignesDePersonne(p, anneeMin, anneeMax)) {
        const long id = bdd.Protege([&] {
          LieColonnes(ajout, 1, ligne);
          return long(bdd.PostInTableIndex(ajout));
        });
        ++ecrites;
        // Ce que ReinitTableIndexBis écarterait en relisant la table.
        if (table && !juge.EnregFoireux(ligne) && ligne.FicheSupprimee != 'O') table->Ajoute(TEltIndex(ligne, id));
      }
    }
    // Les index de la table se font après ses lignes, d'un seul tri chacun, dans la même
    // transaction.
    bdd.Protege([&] {
      for (const TIndexSchema& index : schema->Index) {
        const std::string sql = SqlCreationIndex(*schema, index);
        if (!sql.empty()) bdd.Base().exec(sql);
      }
    });
    prog.Position(dernier);
    bloc.Valide();
  }
  // Une mémoire déjà chargée (ou demandée) est refaite tout de suite ; sinon elle se fera de la
  // table neuve au premier usage (le fichier, lui, est déjà effacé).
  // Le classement ne montre sa barre qu'au-delà de 20 000 lignes, comme ReinitTableIndexBis.
  if (table) InstalleMemoire(std::move(table), ecrites > 20000 ? progression : nullptr);
  return true;
}

void TFicIndexPerson::InstalleMemoire(std::unique_ptr<TGestEltIndex> table, TProgression* prog) {
  if (prog) prog->Texte("Classement en cours...");
  TEltIndex a, b;
  table->Classement(a, b, prog);
  // Un abandon pendant le classement laisserait une table à demi triée, où la recherche se
  // tromperait : le classement est alors mené à son terme sans barre.
  if (prog && prog->Abandon()) table->Classement(a, b, nullptr);
  Memoire = std::move(table);
  DuFichier = false;
  RelieTable();
  Session = ControleBase();
  if (PeutEcrire()) Modifiee = true;  // la mémoire refaite sera gardée à la fermeture
}

void TFicIndexPerson::ReinitTableIndexBis(TProgression* progression) {
  Memoire.reset();
  DuFichier = false;
  if (PeutEcrire()) EffaceFichier();
  const long n = LectureEntete();
  TProgression* prog = n > 20000 ? progression : nullptr;
  if (prog) {
    prog->Titre("Réparation des index");
    prog->Texte("Insertion en cours...");
    prog->Maximum(n);
    prog->Position(0);
  }
  auto table = std::make_unique<TGestEltIndex>(n + 2, 2000, 92);
  TModuleBDD* bdd = Contexte ? Contexte->ModuleBDD() : nullptr;
  if (bdd && bdd->EstOuverte()) {
    bdd->Protege([&] {
      SQLite::Statement q(bdd->Base(), std::string("SELECT ") + kColonnes + " FROM \"" + kTable + "\" ORDER BY \"ID\"");
      Parcours = &q;
      struct TFinParcours {
        SQLite::Statement*& P;
        ~TFinParcours() { P = nullptr; }
      } fin{Parcours};
      long lu = 0;
      TIndexPerson ip(this);
      while (q.executeStep()) {
        ip.Lecture(-1);
        // Une ligne abîmée (personne hors du fichier, textes démesurés) ou marquée supprimée ne
        // vient pas en mémoire : elle ne ferait lister personne, ou la mauvaise personne. Elle
        // reste dans la table pour la vérification de l'index.
        if (!ip.EnregFoireux(ip.Enreg) && ip.Enreg.FicheSupprimee != 'O') table->Ajoute(TEltIndex(ip.Enreg, ip.ID));
        if (prog && (++lu & 4095) == 0) prog->Position(lu);
      }
    });
  }
  InstalleMemoire(std::move(table), prog);
}

}  // namespace rqbase
