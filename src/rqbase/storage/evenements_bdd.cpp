// TModuleBDD : les événements et champs simples, lignes de la table Evenements.
//
// Chaque opération de curseur du moteur d'origine est ici une requête préparée qui rend
// les mêmes lignes dans le même ordre : un index (NoPersA, RANG_A) se lit par ORDER BY
// RANG_A, ID, l'index ParType par ORDER BY ID. Toute valeur passe en paramètre lié.
#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdio>
#include <map>

#include "rqbase/dates/conversions.h"
#include "rqbase/dates/daterq.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/progression.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/date_heure.h"

namespace rqbase {

namespace {

constexpr const char* kColonnes =
    "\"ID\", \"Type\", \"LibelleChamps\", \"Donnee\", \"NoPersA\", \"NoPersB\", \"Acte\", \"TypeCalend\", "
    "\"Date\", \"Lieu\", \"LieuDit\", \"Note\", \"NoIllustrationParDefaut\", \"LienExtEven\", \"_DONNEE\", "
    "\"_DATE\", \"RANG_A\", \"RANG_B\"";

std::string Select(const char* suite) {
  return std::string("SELECT ") + kColonnes + " FROM \"Evenements\" " + suite;
}

}  // namespace

// Une ligne de la table telle qu'elle est stockée (textes déjà en Windows-1252).
struct TLigneEven {
  long Id = 0;
  long Type = 0;
  std::string Libelle, Donnee;
  long NoPersA = 0, NoPersB = 0;
  std::string Acte, Calend, Date;
  long Lieu = 0;
  std::string LieuDit;
  long Note = 0, NoIll = 0, LienExt = 0;
  std::string DonneeIdx;
  long DateIdx = 0;
  long RangA = 0, RangB = 0;
};

namespace {

using TLigne = TLigneEven;

// Un entier hors des 32 bits signés des colonnes (écrit par un autre outil) se lit 0.
long Entier(SQLite::Statement& q, int col) {
  const SQLite::Column c = q.getColumn(col);
  if (c.isNull()) return 0;
  const int64_t v = c.getInt64();
  return v < INT32_MIN || v > INT32_MAX ? 0 : static_cast<long>(v);
}

std::string Texte(SQLite::Statement& q, int col) {
  return TModuleBDD::TexteColonne(q, col);
}

TLigne LitLigne(SQLite::Statement& q) {
  TLigne l;
  const int64_t id = q.getColumn(0).getInt64();
  l.Id = id < 0 || id > INT32_MAX ? 0 : static_cast<long>(id);
  l.Type = Entier(q, 1);
  l.Libelle = Texte(q, 2);
  l.Donnee = Texte(q, 3);
  l.NoPersA = Entier(q, 4);
  l.NoPersB = Entier(q, 5);
  l.Acte = Texte(q, 6);
  l.Calend = Texte(q, 7);
  l.Date = Texte(q, 8);
  l.Lieu = Entier(q, 9);
  l.LieuDit = Texte(q, 10);
  l.Note = Entier(q, 11);
  l.NoIll = Entier(q, 12);
  l.LienExt = Entier(q, 13);
  l.DonneeIdx = Texte(q, 14);
  l.DateIdx = Entier(q, 15);
  l.RangA = Entier(q, 16);
  l.RangB = Entier(q, 17);
  return l;
}

std::string Coupe(std::string_view t, size_t n) {
  return std::string(t.substr(0, std::min(t.size(), n)));
}

// Le texte "%c" du calendrier ; le caractère nul n'écrit rien.
std::string TexteCalendrier(char c) {
  return c == 0 ? std::string() : std::string(1, c);
}

// Un calendrier vide se relit '?', qu'une copie de date change en 'G' : trois écritures
// d'une même valeur, qui ne comptent pas comme un changement.
bool MemeCalendrier(const std::string& a, const std::string& b) {
  auto classe = [](const std::string& c) { return c.empty() || c == "?" || c == "G" ? std::string("G") : c; };
  return classe(a) == classe(b);
}

// Les colonnes qu'un objet écrit (le rang de l'autre personne reste celui de la ligne).
TLigne LigneDe(const TEvenement& ev, const TLigne* ancienne, bool derivees = true) {
  const TEvenement::TEnreg& e = ev.Enreg;
  TLigne l;
  l.Id = e.No;
  l.Type = 0;
  l.Libelle = Coupe(Trim(e.Libelle), kLgLibelle);
  l.Donnee = Coupe(e.Donnee, kLgDonnee);
  l.NoPersA = e.NoPersA;
  l.NoPersB = e.NoPersB;
  l.Acte = e.Date.GetActe();
  l.Calend = TexteCalendrier(e.Date.GetCalendrier());
  l.Date = e.Date.GetDate();
  l.Lieu = e.Lieu;
  l.LieuDit = Coupe(e.LieuDit, kLgLieuDit);
  l.Note = e.Note;
  l.NoIll = e.NoIllustrationParDefaut;
  l.LienExt = e.LienExtEven;
  if (derivees) {
    l.DonneeIdx = TModuleBDD::FormatChaine_Donnee(l.Donnee, false);
    l.DateIdx = TModuleBDD::ConvDateEnDateIndex(e.Date);
  }
  if (ancienne) {
    l.RangA = ancienne->RangA;
    l.RangB = ancienne->RangB;
  }
  if (ev.InfoRangValide()) {
    if (ev.NoPers == e.NoPersA)
      l.RangA = ev.Rang;
    else if (ev.NoPers == e.NoPersB)
      l.RangB = ev.Rang;
  }
  return l;
}

TLigne LigneDe(const TChpsSimple& chp, const TLigne* ancienne, bool derivees = true) {
  const TChpsSimple::TEnreg& e = chp.Enreg;
  TLigne l;
  l.Id = e.No;
  l.Type = 1;
  l.Libelle = Coupe(Trim(e.Libelle), kLgLibelle);
  l.Donnee = Coupe(e.Donnee, kLgDonnee);
  l.NoPersA = e.NoPersA;
  l.NoPersB = e.NoPersB;
  if (derivees) l.DonneeIdx = TModuleBDD::FormatChaine_Donnee(l.Donnee, false);
  if (ancienne) {
    l.RangA = ancienne->RangA;
    l.RangB = ancienne->RangB;
  }
  if (chp.InfoRangValide()) {
    if (chp.NoPers == e.NoPersA)
      l.RangA = chp.Rang;
    else if (chp.NoPers == e.NoPersB)
      l.RangB = chp.Rang;
  }
  return l;
}

bool MemesColonnesEven(const TLigne& n, const TLigne& lu, const TLigne& brut) {
  return n.Libelle == lu.Libelle && n.Donnee == lu.Donnee && n.NoPersA == lu.NoPersA && n.NoPersB == lu.NoPersB &&
         n.Acte == lu.Acte && MemeCalendrier(n.Calend, lu.Calend) && n.Date == lu.Date && n.Lieu == lu.Lieu &&
         n.LieuDit == lu.LieuDit && n.Note == lu.Note && n.NoIll == lu.NoIll && n.LienExt == lu.LienExt &&
         n.Type == brut.Type && n.DonneeIdx == brut.DonneeIdx && n.DateIdx == brut.DateIdx && n.RangA == brut.RangA &&
         n.RangB == brut.RangB;
}

// Ce qui s'écrit d'une ligne changée : colonne par colonne, une valeur que l'objet n'a pas
// changée (égale à ce que la lecture en a donné) garde ce qui est stocké. Un texte trop long
// ou un lieu au-delà du fichier, coupés ou annulés à la lecture, ne sont donc pas écrasés
// parce qu'une autre colonne a changé.
TLigne Fusion(const TLigne& n, const TLigne& lu, const TLigne& brut) {
  TLigne w = n;
  if (n.Libelle == lu.Libelle) w.Libelle = brut.Libelle;
  if (n.Donnee == lu.Donnee) w.Donnee = brut.Donnee;
  if (n.Acte == lu.Acte) w.Acte = brut.Acte;
  if (MemeCalendrier(n.Calend, lu.Calend)) w.Calend = brut.Calend;
  if (n.Date == lu.Date) w.Date = brut.Date;
  if (n.Lieu == lu.Lieu) w.Lieu = brut.Lieu;
  if (n.LieuDit == lu.LieuDit) w.LieuDit = brut.LieuDit;
  if (n.Note == lu.Note) w.Note = brut.Note;
  return w;
}

bool MemesColonnesChps(const TLigne& n, const TLigne& lu, const TLigne& brut) {
  return n.Libelle == lu.Libelle && n.Donnee == lu.Donnee && n.NoPersA == lu.NoPersA && n.NoPersB == lu.NoPersB &&
         n.Type == brut.Type && n.DonneeIdx == brut.DonneeIdx && n.RangA == brut.RangA && n.RangB == brut.RangB;
}

// Une transaction par les requêtes gardées de la base : BEGIN et COMMIT ne sont pas relus à
// chaque personne enregistrée. Défaite à la destruction si elle n'a pas été validée.
class TBloc {
 public:
  explicit TBloc(TModuleBDD& bdd) : Bdd(bdd) { Bdd.Requete("BEGIN").exec(); }
  ~TBloc() {
    if (!Ouvert) return;
    try {
      Bdd.Requete("ROLLBACK").tryExecuteStep();
    } catch (...) {
      // Un destructeur ne lève pas ; la connexion perdue a déjà tout défait.
    }
  }
  void Valide() {
    Bdd.Requete("COMMIT").exec();
    Ouvert = false;
  }

 private:
  TModuleBDD& Bdd;
  bool Ouvert = true;
};

// Les fils nommés lisent par leur propre curseur (voir LectureEven).
bool FilDeFond(const std::string& nom) {
  return nom == "ThreadBirthday" || nom == "ThreadUpdateDistCum";
}

}  // namespace

// --- Voisinage ---

void TModuleBDD::ChasseDuCache(long no) {
  if (no == 0 || !Contexte) return;
  TFicPersons* fic = Contexte->FicPersons();
  if (fic && fic->Cache()) fic->Cache()->Delete(no < 0 ? -no : no);
}

bool TModuleBDD::PersonneSupprimee(long no) {
  if (no < 0) no = -no;
  if (no == 0 || !Contexte) return false;
  TFicPersons* fic = Contexte->FicPersons();
  if (!fic || no > fic->NbPersEffective()) return false;
  TEnregPersonne enreg{};
  return fic->LitEnreg(no, enreg) && enreg.Supprime == 'O';
}

long TModuleBDD::AnnuleSiSupLong(long valeur, const std::function<long()>& compte) const {
  // Un numéro négatif ne désigne rien non plus : il est annulé comme un numéro trop grand.
  if (valeur < 0) return 0;
  if (compte && valeur > compte()) return 0;
  return valeur;
}

long TModuleBDD::Ecrit(SQLite::Statement& requete) {
  const int lignes = PostInTable(requete);
  LignesEcrites += lignes;
  return lignes;
}

// --- Lignes et objets ---

namespace {

// Ce que la lecture d'une ligne donne à un événement (GetEvenement).
void RemplitEven(TEvenement::TEnreg& e, const TLigne& l, long lieu, long note) {
  e.No = l.Id;
  e.SetLibelle(l.Libelle);
  e.SetDonnee(l.Donnee);
  e.NoPersA = l.NoPersA;
  e.NoPersB = l.NoPersB;
  e.Date = TDateRQ(l.Calend.empty() ? '?' : l.Calend[0], l.Date);
  // Un acte de plus de 2 caractères n'en est pas un : il est laissé vide.
  e.Date.SetActe(l.Acte.size() > 2 ? std::string_view("") : std::string_view(l.Acte));
  e.Lieu = lieu;
  e.SetLieuDit(l.LieuDit);
  e.Note = note;
  e.NoIllustrationParDefaut = l.NoIll;
  e.LienExtEven = l.LienExt;
}

void RemplitChps(TChpsSimple::TEnreg& e, const TLigne& l) {
  e.No = l.Id;
  e.SetLibelle(l.Libelle);
  e.SetDonnee(l.Donnee);
  e.NoPersA = l.NoPersA;
  e.NoPersB = l.NoPersB;
  e.Rang = static_cast<int>(l.RangA);
}

}  // namespace

bool TModuleBDD::LectureEven(TEvenement* ev) {
  const long no = ev->Enreg.No;
  ev->Enreg.Raz();
  if (no <= 0) return false;
  return Protege([&] {
    const std::string sql = Select("WHERE \"ID\" = ?");
    // Un fil de fond ne déplace jamais le curseur principal : requête à part, fermée après.
    std::unique_ptr<SQLite::Statement> propre;
    SQLite::Statement* q;
    if (FilDeFond(NomThread)) {
      propre = std::make_unique<SQLite::Statement>(Base(), sql);
      q = propre.get();
    } else {
      q = &Requete(sql);
    }
    q->bind(1, static_cast<int64_t>(no));
    bool trouve = false;
    if (q->executeStep()) {
      const TLigne l = LitLigne(*q);
      RemplitEven(ev->Enreg, l, AnnuleSiSupLong(l.Lieu, NbLieux), AnnuleSiSupLong(l.Note, NbNotes));
      trouve = true;
    }
    q->tryReset();
    return trouve;
  });
}

std::string TModuleBDD::ColonnesEvenements() {
  return kColonnes;
}

void TModuleBDD::GetEvenement(TEvenement* ev, SQLite::Statement& ligne) {
  ev->Enreg.Raz();
  Protege([&] {
    const TLigne l = LitLigne(ligne);
    RemplitEven(ev->Enreg, l, AnnuleSiSupLong(l.Lieu, NbLieux), AnnuleSiSupLong(l.Note, NbNotes));
  });
}

void TModuleBDD::GetChpsSimple(TChpsSimple* chp, SQLite::Statement& ligne) {
  chp->Enreg.Raz();
  Protege([&] { RemplitChps(chp->Enreg, LitLigne(ligne)); });
}

bool TModuleBDD::LectureEven(const std::string& libelle, TEvenement* ev, long no, int rang) {
  ev->Enreg.Raz();
  if (no <= 0 || rang < 1) return false;
  return Protege([&] {
    SQLite::Statement& q = Requete(
        Select("WHERE \"LibelleChamps\" = ? AND \"Type\" = 0 AND (\"NoPersA\" = ? OR \"NoPersB\" = ?) ORDER BY \"ID\" "
               "LIMIT 1 OFFSET ?"));
    LieTexte(q, 1, Coupe(Trim(libelle), kLgLibelle));
    q.bind(2, static_cast<int64_t>(no));
    q.bind(3, static_cast<int64_t>(no));
    q.bind(4, rang - 1);
    bool trouve = false;
    if (q.executeStep()) {
      const TLigne l = LitLigne(q);
      RemplitEven(ev->Enreg, l, AnnuleSiSupLong(l.Lieu, NbLieux), AnnuleSiSupLong(l.Note, NbNotes));
      trouve = true;
    }
    q.tryReset();
    return trouve;
  });
}

bool TModuleBDD::LectureChpsSimple(TChpsSimple* chp) {
  const long no = chp->Enreg.No;
  chp->Enreg.Raz();
  if (no <= 0) return false;
  return Protege([&] {
    SQLite::Statement& q = Requete(Select("WHERE \"ID\" = ?"));
    q.bind(1, static_cast<int64_t>(no));
    bool trouve = false;
    if (q.executeStep()) {
      RemplitChps(chp->Enreg, LitLigne(q));
      trouve = true;
    }
    q.tryReset();
    return trouve;
  });
}

bool TModuleBDD::LectureChpsSimple(const std::string& libelle, long no, TChpsSimple* chp) {
  chp->Enreg.Raz();
  if (no <= 0) return false;
  return Protege([&] {
    SQLite::Statement& q = Requete(
        Select("WHERE \"LibelleChamps\" = ? AND \"Type\" <> 0 AND (\"NoPersA\" = ? OR \"NoPersB\" = ?) ORDER BY "
               "\"ID\" LIMIT 1"));
    LieTexte(q, 1, Coupe(Trim(libelle), kLgLibelle));
    q.bind(2, static_cast<int64_t>(no));
    q.bind(3, static_cast<int64_t>(no));
    bool trouve = false;
    if (q.executeStep()) {
      RemplitChps(chp->Enreg, LitLigne(q));
      trouve = true;
    }
    q.tryReset();
    return trouve;
  });
}

// --- Écriture ---

namespace {

void LieLigne(SQLite::Statement& q, const TLigne& l) {
  q.bind(1, static_cast<int>(l.Type));
  TModuleBDD::LieTexte(q, 2, l.Libelle);
  TModuleBDD::LieTexte(q, 3, l.Donnee);
  q.bind(4, static_cast<int64_t>(l.NoPersA));
  q.bind(5, static_cast<int64_t>(l.NoPersB));
  TModuleBDD::LieTexte(q, 6, l.Acte);
  TModuleBDD::LieTexte(q, 7, l.Calend);
  TModuleBDD::LieTexte(q, 8, l.Date);
  q.bind(9, static_cast<int64_t>(l.Lieu));
  TModuleBDD::LieTexte(q, 10, l.LieuDit);
  q.bind(11, static_cast<int64_t>(l.Note));
  q.bind(12, static_cast<int64_t>(l.NoIll));
  q.bind(13, static_cast<int64_t>(l.LienExt));
  TModuleBDD::LieTexte(q, 14, l.DonneeIdx);
  q.bind(15, static_cast<int64_t>(l.DateIdx));
  q.bind(16, static_cast<int64_t>(l.RangA));
  q.bind(17, static_cast<int64_t>(l.RangB));
}

const TLigne kLigneVide;
const std::string kInsertion =
    "INSERT INTO \"Evenements\" (\"Type\", \"LibelleChamps\", \"Donnee\", \"NoPersA\", \"NoPersB\", \"Acte\", "
    "\"TypeCalend\", \"Date\", \"Lieu\", \"LieuDit\", \"Note\", \"NoIllustrationParDefaut\", \"LienExtEven\", "
    "\"_DONNEE\", \"_DATE\", \"RANG_A\", \"RANG_B\", \"ID\") VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
    "?, ?)";
const std::string kMiseAJour =
    "UPDATE \"Evenements\" SET \"Type\" = ?, \"LibelleChamps\" = ?, \"Donnee\" = ?, \"NoPersA\" = ?, \"NoPersB\" = "
    "?, \"Acte\" = ?, \"TypeCalend\" = ?, \"Date\" = ?, \"Lieu\" = ?, \"LieuDit\" = ?, \"Note\" = ?, "
    "\"NoIllustrationParDefaut\" = ?, \"LienExtEven\" = ?, \"_DONNEE\" = ?, \"_DATE\" = ?, \"RANG_A\" = ?, "
    "\"RANG_B\" = ? WHERE \"ID\" = ?";
const std::string kMiseAJourChps =
    "UPDATE \"Evenements\" SET \"Type\" = ?, \"LibelleChamps\" = ?, \"Donnee\" = ?, \"NoPersA\" = ?, \"NoPersB\" = "
    "?, \"_DONNEE\" = ?, \"RANG_A\" = ?, \"RANG_B\" = ? WHERE \"ID\" = ?";

}  // namespace

namespace {

// Trouve la ligne d'un numéro ; false si elle n'existe pas.
bool ChercheLigne(TModuleBDD& bdd, long id, TLigne& l) {
  if (id <= 0) return false;
  static const std::string sql = Select("WHERE \"ID\" = ?");
  SQLite::Statement& q = bdd.Requete(sql);
  q.bind(1, static_cast<int64_t>(id));
  const bool trouve = q.executeStep();
  if (trouve) l = LitLigne(q);
  q.tryReset();
  return trouve;
}

}  // namespace

bool TModuleBDD::SetEvenement(TEvenement* ev, bool sansListes) {
  return Protege([&] {
    TLigne ancienne;
    const bool existe = ev->Enreg.No > 0 && !IsReserved(ev->Enreg.No) && ChercheLigne(*this, ev->Enreg.No, ancienne);
    return EcritEven(ev, existe ? &ancienne : nullptr, sansListes);
  });
}

// Une ligne neuve d'événement ou de champ simple : sous le numéro donné (réservé par un import)
// ou sous celui que le moteur donne ; rend le numéro de la ligne.
long TModuleBDD::InsereLigne(const TLigne& n, long no) {
  SQLite::Statement& q = Requete(kInsertion);
  LieLigne(q, n);
  if (no > 0)
    q.bind(18, static_cast<int64_t>(no));
  else
    q.bind(18);
  ChasseDuCache(n.NoPersA);
  ChasseDuCache(n.NoPersB);
  Ecrit(q);
  if (no <= 0) no = static_cast<long>(Base().getLastInsertRowid());
  Reserves.erase(no);
  return no;
}

// `connue` : la ligne telle qu'elle vient d'être lue, nulle pour une ligne neuve.
bool TModuleBDD::EcritEven(TEvenement* ev, const TLigneEven* connue, bool sansListes) {
  return Protege([&] {
    bool ecrit = false;
    const bool existe = connue != nullptr;
    const TLigne& ancienne = existe ? *connue : kLigneVide;
    if (!existe) {
      // Ligne neuve : tout compte comme changé, le numéro vient du moteur ou de l'import.
      ev->Enreg.No = InsereLigne(LigneDe(*ev, nullptr), ev->Enreg.No);
      ecrit = true;
    } else {
      const TLigne n = LigneDe(*ev, &ancienne);
      TEvenement relu;
      RemplitEven(relu.Enreg, ancienne, AnnuleSiSupLong(ancienne.Lieu, NbLieux),
                  AnnuleSiSupLong(ancienne.Note, NbNotes));
      const TLigne lu = LigneDe(relu, &ancienne, false);
      if (!MemesColonnesEven(n, lu, ancienne)) {
        SQLite::Statement& q = Requete(kMiseAJour);
        LieLigne(q, Fusion(n, lu, ancienne));
        q.bind(18, static_cast<int64_t>(ev->Enreg.No));
        ChasseDuCache(n.NoPersA);
        ChasseDuCache(n.NoPersB);
        Ecrit(q);
        ecrit = true;
      }
    }
    if (!sansListes) {
      EnregistrementPersAssociees(ev);
      UpdaterIllustrationOfEven(ev);
      UpdaterSourceOfEven(ev);
    }
    return ecrit;
  });
}

bool TModuleBDD::SetChpsSimple(TChpsSimple* chp) {
  return Protege([&] {
    TLigne ancienne;
    const bool existe = chp->Enreg.No > 0 && !IsReserved(chp->Enreg.No) && ChercheLigne(*this, chp->Enreg.No, ancienne);
    return EcritChps(chp, existe ? &ancienne : nullptr);
  });
}

bool TModuleBDD::EcritChps(TChpsSimple* chp, const TLigneEven* connue) {
  return Protege([&] {
    if (ColonneDateModif < 0) ColonneDateModif = ColonneExiste("Evenements", "DateLastModif") ? 1 : 0;
    const bool existe = connue != nullptr;
    const TLigne& ancienne = existe ? *connue : kLigneVide;
    if (!existe) {
      chp->Enreg.No = InsereLigne(LigneDe(*chp, nullptr), chp->Enreg.No);
    } else {
      const TLigne n = LigneDe(*chp, &ancienne);
      TChpsSimple relu;
      RemplitChps(relu.Enreg, ancienne);
      const TLigne lu = LigneDe(relu, &ancienne, false);
      if (MemesColonnesChps(n, lu, ancienne)) return false;
      SQLite::Statement& q = Requete(kMiseAJourChps);
      q.bind(1, static_cast<int>(n.Type));
      LieTexte(q, 2, n.Libelle == lu.Libelle ? ancienne.Libelle : n.Libelle);
      LieTexte(q, 3, n.Donnee == lu.Donnee ? ancienne.Donnee : n.Donnee);
      q.bind(4, static_cast<int64_t>(n.NoPersA));
      q.bind(5, static_cast<int64_t>(n.NoPersB));
      LieTexte(q, 6, n.DonneeIdx);
      q.bind(7, static_cast<int64_t>(n.RangA));
      q.bind(8, static_cast<int64_t>(n.RangB));
      q.bind(9, static_cast<int64_t>(n.Id));
      ChasseDuCache(n.NoPersA);
      ChasseDuCache(n.NoPersB);
      Ecrit(q);
    }
    // Un champ simple écrit porte sa date de changement ; un champ inchangé n'est pas écrit.
    if (ColonneDateModif == 1) {
      SQLite::Statement& d =
          Requete("UPDATE \"Evenements\" SET \"DateLastModif\" = datetime('now', 'localtime') WHERE \"ID\" = ?");
      d.bind(1, static_cast<int64_t>(chp->Enreg.No));
      PostInTable(d);
    }
    return true;
  });
}

bool TModuleBDD::EnregistrementEven(TEvenement* ev) {
  ChasseDuCache(ev->Enreg.NoPersA);
  ChasseDuCache(ev->Enreg.NoPersB);
  // Un numéro réservé en import n'a pas encore de ligne : il est imposé à l'insertion ;
  // un objet sans numéro pendant l'import prend le suivant du compteur.
  if (ev->Enreg.No == 0 && EnImport()) ev->Enreg.No = ReturnNewNumEven();
  return SetEvenement(ev, false);
}

bool TModuleBDD::EnregistrementChpsSimple(TChpsSimple* chp) {
  ChasseDuCache(chp->Enreg.NoPersA);
  ChasseDuCache(chp->Enreg.NoPersB);
  if (chp->Enreg.No == 0 && EnImport()) chp->Enreg.No = ReturnNewNumChpsSimple();
  return SetChpsSimple(chp);
}

long TModuleBDD::ReturnNewNumEven() {
  if (EnImport()) {
    if (PremierNumEven == 0) PremierNumEven = GetIDEventMax() + 1;
    const long no = PremierNumEven++;
    Reserves.insert(no);
    return no;
  }
  TEvenement vierge(this);
  SetEvenement(&vierge, true);
  return vierge.Enreg.No;
}

long TModuleBDD::ReturnNewNumChpsSimple() {
  if (EnImport()) return ReturnNewNumEven();
  TChpsSimple vierge(this);
  SetChpsSimple(&vierge);
  return vierge.Enreg.No;
}

// --- Questions ---

namespace {

long UnEntier(TModuleBDD& bdd, const char* sql, std::initializer_list<int64_t> params) {
  return bdd.Protege([&] {
    SQLite::Statement& q = bdd.Requete(sql);
    int i = 1;
    for (int64_t p : params) q.bind(i++, p);
    long r = 0;
    if (q.executeStep() && !q.getColumn(0).isNull()) r = static_cast<long>(q.getColumn(0).getInt64());
    q.tryReset();
    return r;
  });
}

}  // namespace

bool TModuleBDD::NoEvenExists(long id) {
  return UnEntier(*this, "SELECT COUNT(*) FROM \"Evenements\" WHERE \"ID\" = ? AND \"Type\" = 0", {id}) > 0;
}
bool TModuleBDD::NoChpsSimpleExists(long id) {
  return UnEntier(*this, "SELECT COUNT(*) FROM \"Evenements\" WHERE \"ID\" = ? AND \"Type\" <> 0", {id}) > 0;
}
bool TModuleBDD::IsIdEventExists(long id) {
  return UnEntier(*this, "SELECT COUNT(*) FROM \"Evenements\" WHERE \"ID\" = ?", {id}) > 0;
}
long TModuleBDD::GetNbEvenements() {
  return UnEntier(*this, "SELECT COUNT(*) FROM \"Evenements\" WHERE \"Type\" = 0", {});
}
long TModuleBDD::GetNbChpsSimples() {
  return UnEntier(*this, "SELECT COUNT(*) FROM \"Evenements\" WHERE \"Type\" <> 0", {});
}
long TModuleBDD::GetNbEvenementPers(long no) {
  if (no <= 0) return 0;
  return UnEntier(*this,
                  "SELECT (SELECT COUNT(*) FROM \"Evenements\" WHERE \"NoPersA\" = ?1 AND \"Type\" = 0) + (SELECT "
                  "COUNT(*) FROM \"Evenements\" WHERE \"NoPersB\" = ?1 AND \"Type\" = 0)",
                  {no});
}
long TModuleBDD::GetIDEventMax(bool simple) {
  return simple ? UnEntier(*this, "SELECT MAX(\"ID\") FROM \"Evenements\" WHERE \"Type\" <> 0", {})
                : UnEntier(*this, "SELECT MAX(\"ID\") FROM \"Evenements\"", {});
}
long TModuleBDD::GetIDSourceMax() {
  return UnEntier(*this, "SELECT MAX(\"ID_SOURCE\") FROM \"Sources\"", {});
}
long TModuleBDD::GetIDIllustrationMax() {
  return UnEntier(*this, "SELECT MAX(\"ID_ILLUSTRATION\") FROM \"Illustrations\"", {});
}
long TModuleBDD::RecupereNoPersbyIDEven(long id) {
  return UnEntier(*this, "SELECT \"NoPersA\" FROM \"Evenements\" WHERE \"ID\" = ?", {id});
}
bool TModuleBDD::IsIDevenAssocieNoPers(long id, long no) {
  return UnEntier(*this,
                  "SELECT COUNT(*) FROM \"Evenements\" WHERE \"ID\" = ?1 AND (\"NoPersA\" = ?2 OR \"NoPersB\" = ?2)",
                  {id, no}) > 0;
}
int TModuleBDD::GetNextRangEven(long no, bool commeB) {
  return static_cast<int>(
             commeB ? UnEntier(*this, "SELECT MAX(\"RANG_B\") FROM \"Evenements\" WHERE \"NoPersB\" = ?", {no})
                    : UnEntier(*this, "SELECT MAX(\"RANG_A\") FROM \"Evenements\" WHERE \"NoPersA\" = ?", {no})) +
         1;
}

bool TModuleBDD::DataExists(const std::string& libelle, long no, int rang) {
  return Protege([&] {
    SQLite::Statement& q = Requete(
        "SELECT COUNT(*) FROM \"Evenements\" WHERE \"LibelleChamps\" = ? AND \"NoPersA\" = ? AND (? = 0 OR "
        "\"RANG_A\" = ?)");
    LieTexte(q, 1, Coupe(Trim(libelle), kLgLibelle));
    q.bind(2, static_cast<int64_t>(no));
    q.bind(3, rang);
    q.bind(4, rang);
    const bool existe = q.executeStep() && q.getColumn(0).getInt64() > 0;
    q.tryReset();
    return existe;
  });
}

// --- Une personne ---

namespace {

// Les lignes d'une passe, lues d'abord en entier : les écritures qui suivent changent les
// rangs, donc l'ordre de l'index que la lecture suit.
std::vector<TLigne> LignesDeLaPasse(TModuleBDD& bdd, bool passeB, long no) {
  static const std::string sqlA = Select("WHERE \"NoPersA\" = ? ORDER BY \"RANG_A\", \"ID\"");
  static const std::string sqlB = Select("WHERE \"NoPersB\" = ? ORDER BY \"RANG_B\", \"ID\"");
  SQLite::Statement& q = bdd.Requete(passeB ? sqlB : sqlA);
  q.bind(1, static_cast<int64_t>(no));
  std::vector<TLigne> lignes;
  while (q.executeStep()) lignes.push_back(LitLigne(q));
  q.tryReset();
  return lignes;
}

}  // namespace

void TModuleBDD::ParcoursChpsDePersonne(long no, const std::function<void(TEvenement&, int)>& surEven,
                                        const std::function<void(TChpsSimple&, int)>& surChps) {
  if (no < 1) return;
  Protege([&] {
    for (int passe = 0; passe < 2; ++passe) {
      const std::vector<TLigne> lignes = LignesDeLaPasse(*this, passe == 1, no);
      for (const TLigne& l : lignes) {
        // Première passe : au bout ; seconde : à la place que le rang du conjoint donne.
        const int pos = passe == 0 ? -1 : static_cast<int>(l.RangB) - 1;
        if (l.Type == 0) {
          TEvenement ev(this);
          RemplitEven(ev.Enreg, l, AnnuleSiSupLong(l.Lieu, NbLieux), AnnuleSiSupLong(l.Note, NbNotes));
          if (surEven) surEven(ev, pos);
        } else {
          TChpsSimple chp(this);
          RemplitChps(chp.Enreg, l);
          if (surChps) surChps(chp, pos);
        }
      }
    }
  });
}

long TModuleBDD::EnregistrerChpsDePersonne(long no, const std::vector<TEvenement*>& evens,
                                           const std::vector<TChpsSimple*>& chps, bool sansEffacement,
                                           bool sansListes) {
  const long avant = LignesEcrites;
  Protege([&] {
    // Une personne s'écrit d'un bloc : une panne au milieu ne laisse pas la moitié de ses
    // lignes, et une seule écriture durable suffit. En import, le paquet en cours s'en charge.
    std::unique_ptr<TBloc> bloc;
    if (!EnImport()) bloc = std::make_unique<TBloc>(*this);
    std::map<long, TEvenement*> carteEvens;
    std::map<long, TChpsSimple*> carteChps;
    for (size_t i = 0; i < evens.size(); ++i) {
      evens[i]->SetNoPersRang(no, static_cast<int>(i) + 1);
      if (evens[i]->Enreg.No > 0) carteEvens[evens[i]->Enreg.No] = evens[i];
    }
    for (size_t i = 0; i < chps.size(); ++i) {
      chps[i]->SetNoPersRang(no, static_cast<int>(i) + 1);
      if (chps[i]->Enreg.No > 0) carteChps[chps[i]->Enreg.No] = chps[i];
    }
    std::set<long> faits;
    if (!sansEffacement && no > 0) {
      for (int passe = 0; passe < 2; ++passe) {
        const bool passeB = passe == 1;
        for (const TLigne& l : LignesDeLaPasse(*this, passeB, no)) {
          ChasseDuCache(passeB ? l.NoPersA : l.NoPersB);
          if (auto e = carteEvens.find(l.Id); e != carteEvens.end()) {
            EcritEven(e->second, &l, sansListes);
            faits.insert(l.Id);
          } else if (auto c = carteChps.find(l.Id); c != carteChps.end()) {
            EcritChps(c->second, &l);
            faits.insert(l.Id);
          } else if (!faits.count(l.Id)) {
            // Plus dans les listes de la personne : la ligne est détachée d'elle seule.
            SQLite::Statement& q = Requete(passeB ? "UPDATE \"Evenements\" SET \"NoPersB\" = 0 WHERE \"ID\" = ?"
                                                  : "UPDATE \"Evenements\" SET \"NoPersA\" = 0 WHERE \"ID\" = ?");
            q.bind(1, static_cast<int64_t>(l.Id));
            Ecrit(q);
            UpdatePersCiteeBuffer(l.Id);
          }
        }
      }
    }
    // Ceux que les passes n'ont pas vus (ligne d'une autre personne, ligne absente) et les neufs.
    for (TEvenement* ev : evens)
      if (ev->Enreg.No <= 0 || !faits.count(ev->Enreg.No)) EnregistrementEven(ev);
    for (TChpsSimple* chp : chps)
      if (chp->Enreg.No <= 0 || !faits.count(chp->Enreg.No)) EnregistrementChpsSimple(chp);
    if (bloc) bloc->Valide();
  });
  return LignesEcrites - avant;
}

// --- Parcours ---

namespace {

// `sortes` : la clause qui choisit les événements, les champs simples, ou les deux.
std::unique_ptr<SQLite::Statement> OuvreParcours(SQLite::Database& base, const char* sortes, const std::string& libelle,
                                                 long noPers) {
  std::string sql = Select(sortes);
  if (!libelle.empty()) sql += " AND \"LibelleChamps\" = :lib";
  if (noPers != 0) sql += " AND (\"NoPersA\" = :no OR \"NoPersB\" = :no)";
  sql += " ORDER BY \"ID\"";
  auto q = std::make_unique<SQLite::Statement>(base, sql);
  if (!libelle.empty()) q->bind(":lib", VersUtf8(Coupe(Trim(libelle), kLgLibelle)));
  if (noPers != 0) q->bind(":no", static_cast<int64_t>(noPers));
  return q;
}

// Saute `deplacement` lignes et se place sur la suivante ; false à la fin.
bool Avance(SQLite::Statement& parcours, long deplacement) {
  for (long i = 0; i <= deplacement; ++i)
    if (!parcours.executeStep()) return false;
  return true;
}

}  // namespace

void TModuleBDD::BeginParcoursEvens(const std::string& libelle, long noPers) {
  Protege([&] { ParcoursEvens = OuvreParcours(Base(), "WHERE \"Type\" = 0", libelle, noPers); });
}

bool TModuleBDD::GetEvenParcours(TEvenement* ev, long deplacement) {
  ev->Enreg.Raz();
  if (!ParcoursEvens) return false;
  return Protege([&] {
    if (!Avance(*ParcoursEvens, deplacement)) return false;
    GetEvenement(ev, *ParcoursEvens);
    return true;
  });
}

void TModuleBDD::EndParcoursEvens() {
  ParcoursEvens.reset();
}

void TModuleBDD::BeginParcoursChpsSimple(const std::string& libelle, long noPers) {
  Protege([&] { ParcoursChps = OuvreParcours(Base(), "WHERE \"Type\" <> 0", libelle, noPers); });
}

bool TModuleBDD::GetChpsSimpleParcours(TChpsSimple* chp, long deplacement) {
  chp->Enreg.Raz();
  if (!ParcoursChps) return false;
  return Protege([&] {
    if (!Avance(*ParcoursChps, deplacement)) return false;
    GetChpsSimple(chp, *ParcoursChps);
    return true;
  });
}

void TModuleBDD::EndParcoursChpsSimple() {
  ParcoursChps.reset();
}

void TModuleBDD::BeginParcoursDonnees(const std::string& libelle, long noPers) {
  Protege([&] { ParcoursDonnees = OuvreParcours(Base(), "WHERE 1", libelle, noPers); });
}

bool TModuleBDD::GetDataParcours(TEvenement* ev, TChpsSimple* chp) {
  if (ev) ev->Enreg.Raz();
  if (chp) chp->Enreg.Raz();
  if (!ParcoursDonnees) return false;
  return Protege([&] {
    while (ParcoursDonnees->executeStep()) {
      if (Entier(*ParcoursDonnees, 1) == 0) {
        if (!ev) continue;
        GetEvenement(ev, *ParcoursDonnees);
      } else {
        if (!chp) continue;
        GetChpsSimple(chp, *ParcoursDonnees);
      }
      return true;
    }
    return false;
  });
}

void TModuleBDD::EndParcoursDonnees() {
  ParcoursDonnees.reset();
}

// --- Personne supprimée, restaurée ---

void TModuleBDD::MasquerChpsOfPerson(long no, bool restaure) {
  if (no <= 0) return;
  Protege([&] {
    // Toutes les lignes d'une personne changent ensemble, ou aucune.
    std::unique_ptr<SQLite::Transaction> bloc;
    if (!EnImport()) bloc = std::make_unique<SQLite::Transaction>(Base());
    const long cherche = restaure ? -no : no;
    for (int passe = 0; passe < 2; ++passe) {
      const bool passeB = passe == 1;
      for (const TLigne& l : LignesDeLaPasse(*this, passeB, cherche)) {
        const long autre = passeB ? l.NoPersA : l.NoPersB;
        // L'autre personne encore supprimée garde la ligne cachée (couple dont les deux
        // sont partis : le second retour la rendra).
        if (restaure && PersonneSupprimee(autre)) continue;
        SQLite::Statement& q = Requete("UPDATE \"Evenements\" SET \"NoPersA\" = ?, \"NoPersB\" = ? WHERE \"ID\" = ?");
        q.bind(1, static_cast<int64_t>(-l.NoPersA));
        q.bind(2, static_cast<int64_t>(-l.NoPersB));
        q.bind(3, static_cast<int64_t>(l.Id));
        Ecrit(q);
        MasquerPersAssociee(l.Id, !restaure);
        ChasseDuCache(autre);
      }
    }
    MasquerCitationsOfPerson(no, restaure);
    ChasseDuCache(no);
    if (bloc) bloc->commit();
  });
}

void TModuleBDD::GetListIdPersNegatif(std::set<long>& numeros) {
  Protege([&] {
    SQLite::Statement& q =
        Requete("SELECT \"NoPersA\", \"NoPersB\" FROM \"Evenements\" WHERE \"NoPersA\" < 0 OR \"NoPersB\" < 0");
    while (q.executeStep()) {
      for (int c = 0; c < 2; ++c) {
        const long v = Entier(q, c);
        if (v < 0) numeros.insert(v);
      }
    }
    q.tryReset();
  });
}

// --- Requêtes d'entretien ---

void TModuleBDD::SupprimeEvenDefinitvement(long id) {
  if (id == 0) return;
  Protege([&] {
    for (const char* sql :
         {"DELETE FROM \"Evenements\" WHERE \"ID\" = ?",
          "DELETE FROM \"Illustrations\" WHERE "
          "\"ID_EVEN\" = ?",
          "DELETE FROM \"Sources\" WHERE \"ID_EVEN\" = ?", "DELETE FROM \"PersAssociees\" WHERE \"ID_EVEN\" = ?"}) {
      SQLite::Statement& q = Requete(sql);
      q.bind(1, static_cast<int64_t>(id));
      Ecrit(q);
    }
  });
}

void TModuleBDD::DeleteNoPers(long n) {
  Protege([&] {
    SQLite::Statement& q = Requete("DELETE FROM \"Evenements\" WHERE \"NoPersA\" >= ?");
    q.bind(1, static_cast<int64_t>(n));
    Ecrit(q);
  });
}

void TModuleBDD::EvenChangeID(long ancien, long nouveau) {
  Protege([&] {
    for (const char* sql : {"UPDATE \"Evenements\" SET \"ID\" = ?1 WHERE \"ID\" = ?2",
                            "UPDATE \"Illustrations\" SET \"ID_EVEN\" = ?1 WHERE \"ID_EVEN\" = ?2",
                            "UPDATE \"PersAssociees\" SET \"ID_EVEN\" = ?1 WHERE \"ID_EVEN\" = ?2",
                            "UPDATE \"Sources\" SET \"ID_EVEN\" = ?1 WHERE \"ID_EVEN\" = ?2"}) {
      SQLite::Statement& q = Requete(sql);
      q.bind(1, static_cast<int64_t>(nouveau));
      q.bind(2, static_cast<int64_t>(ancien));
      Ecrit(q);
    }
  });
}

void TModuleBDD::EvenChangeNoPersA(long id, long no, bool commeB) {
  Protege([&] {
    SQLite::Statement& q = Requete(commeB ? "UPDATE \"Evenements\" SET \"NoPersB\" = ? WHERE \"ID\" = ?"
                                          : "UPDATE \"Evenements\" SET \"NoPersA\" = ? WHERE \"ID\" = ?");
    q.bind(1, static_cast<int64_t>(no));
    q.bind(2, static_cast<int64_t>(id));
    Ecrit(q);
  });
}

void TModuleBDD::RenameEven(const std::string& ancien, const std::string& nouveau) {
  Protege([&] {
    SQLite::Statement& q = Requete("UPDATE \"Evenements\" SET \"LibelleChamps\" = ? WHERE \"LibelleChamps\" = ?");
    LieTexte(q, 1, Coupe(Trim(nouveau), kLgLibelle));
    LieTexte(q, 2, Coupe(Trim(ancien), kLgLibelle));
    Ecrit(q);
  });
}

void TModuleBDD::ChangeTypeEvenement(long id, int type) {
  Protege([&] {
    SQLite::Statement& q = Requete("UPDATE \"Evenements\" SET \"Type\" = ? WHERE \"ID\" = ?");
    q.bind(1, type);
    q.bind(2, static_cast<int64_t>(id));
    Ecrit(q);
  });
}

long TModuleBDD::ChpsSimpleEven(const std::string& libelle) {
  if (Progression) {
    Progression->Titre("Mise à jour...");
    Progression->Texte("Mise à jour du champ Profession. Veuillez patienter.");
  }
  return Protege([&] {
    SQLite::Statement& q =
        Requete("UPDATE \"Evenements\" SET \"Type\" = 0 WHERE \"LibelleChamps\" = ? AND \"Type\" <> 0");
    LieTexte(q, 1, Coupe(Trim(libelle), kLgLibelle));
    return Ecrit(q);
  });
}

long TModuleBDD::ModifChampsAvecLeLibelle(const std::string& libelle, const std::string& nouveauLibelle, int type) {
  const std::string ancien = Coupe(Trim(libelle), kLgLibelle);
  const std::string nouveau = Trim(nouveauLibelle).empty() ? ancien : Coupe(Trim(nouveauLibelle), kLgLibelle);
  return Protege([&] {
    // Seules les lignes qui changent sont écrites (et comptées).
    SQLite::Statement& q = Requete(
        type < 0 ? "UPDATE \"Evenements\" SET \"LibelleChamps\" = ?1 WHERE \"LibelleChamps\" = ?2 AND ?1 <> ?2"
                 : "UPDATE \"Evenements\" SET \"LibelleChamps\" = ?1, \"Type\" = ?3 WHERE \"LibelleChamps\" = ?2 "
                   "AND (?1 <> ?2 OR \"Type\" IS NOT ?3)");
    LieTexte(q, 1, nouveau);
    LieTexte(q, 2, ancien);
    if (type >= 0) q.bind(3, type);
    return Ecrit(q);
  });
}

long TModuleBDD::UpdateResidence() {
  return ModifChampsAvecLeLibelle("RESIDENCE", "", 0);
}

// --- Textes et dates ---

long TModuleBDD::ConvDateEnDateIndex(std::string_view date) {
  if (date.size() < 10) return 0;
  std::string s(date);
  if (s[2] == '.' && s[5] == '.') s[2] = s[5] = '/';
  std::replace(s.begin(), s.end(), '.', '0');
  // Les trois premiers morceaux entre « / » (un morceau manquant est vide).
  std::string_view parties[3];
  std::string_view reste(s);
  for (int i = 0; i < 3; ++i) {
    const size_t barre = reste.find('/');
    parties[i] = reste.substr(0, barre);
    if (barre == std::string_view::npos) break;
    reste.remove_prefix(barre + 1);
  }
  std::string_view jour = parties[0], mois = parties[1], annee = parties[2];
  if (s.size() == 19) annee = annee.substr(0, 4);
  auto numerique = [](std::string_view t) {
    return !t.empty() && std::all_of(t.begin(), t.end(), [](char c) { return c >= '0' && c <= '9'; });
  };
  if (!numerique(jour)) jour = "00";
  if (!numerique(mois)) mois = "00";
  if (!numerique(annee)) annee = "0000";
  std::string tout;
  tout.reserve(annee.size() + mois.size() + jour.size());
  tout.append(annee).append(mois).append(jour);
  long long v = 0;
  const auto [fin, erreur] = std::from_chars(tout.data(), tout.data() + tout.size(), v);
  // Un texte qui ne tient pas dans la colonne de 32 bits n'a pas de place dans l'index.
  if (erreur != std::errc() || fin != tout.data() + tout.size() || v > INT32_MAX) return 0;
  return static_cast<long>(v);
}

long TModuleBDD::ConvDateEnDateIndex(const TDateRQ& date) {
  const std::string texte = date.GetDate();
  const char cal = date.GetCalendrier();
  if (cal == 'H' || cal == 'h' || cal == 'R' || cal == 'r') {
    const bool hebreu = cal == 'H' || cal == 'h';
    std::string greg = hebreu ? ConvHebraiqueGregorien(texte) : ConvRepublicainGregorien(texte);
    if (greg.empty()) {
      // Une date qui ne se convertit pas jour pour jour garde au moins son année.
      const std::string an = texte.size() >= 2
                                 ? texte.substr(texte.rfind('/') == std::string::npos ? 0 : texte.rfind('/') + 1)
                                 : std::string();
      int a = 0;
      std::from_chars(an.data(), an.data() + an.size(), a);
      const int ag = a > 0 ? (hebreu ? ConvAnneeHebrGreg(a) : ConvAnneeRepubGreg(a)) : 0;
      if (ag <= 0) return 0;
      char tampon[32];
      std::snprintf(tampon, sizeof tampon, "../../%04d", ag);
      greg = tampon;
    }
    return ConvDateEnDateIndex(std::string_view(greg));
  }
  return ConvDateEnDateIndex(std::string_view(texte));
}

double TModuleBDD::StrVersDateTime(std::string_view date) {
  const long index = ConvDateEnDateIndex(date);
  if (index == 0) return 0;
  const int annee = static_cast<int>(index / 10000), mois = static_cast<int>(index / 100 % 100),
            jour = static_cast<int>(index % 100);
  int heure = 0, minute = 0, seconde = 0;
  if (date.size() == 19) {
    auto nombre = [&](size_t p) {
      int v = 0;
      std::from_chars(date.data() + p, date.data() + p + 2, v);
      return v;
    };
    heure = nombre(11);
    minute = nombre(14);
    seconde = nombre(17);
  }
  TDateTime jourSeul = 0;
  if (!EncodeDate(annee, mois, jour, jourSeul)) return 0;
  if (heure > 23 || minute > 59 || seconde > 59) return jourSeul;
  return EncodeDateHeure(annee, mois, jour, heure, minute, seconde);
}

std::string TModuleBDD::ConvAnneeEntierEnAnsiString(int n) {
  char t[16];
  std::snprintf(t, sizeof t, "%04d", n);
  return t;
}

std::string TModuleBDD::ConvJourOuMoisEntierEnAnsiString(int n) {
  char t[16];
  std::snprintf(t, sizeof t, "%02d", n);
  return t;
}

std::string TModuleBDD::ConvertirChaineFormatSQL(std::string_view s) {
  std::string r;
  r.reserve(s.size() + 8);
  for (char c : s) {
    switch (c) {
      case '\\':
        r += "\\\\";
        break;
      case '\b':
        r += "\\b";
        break;
      case '\n':
        r += "\\n";
        break;
      case '\r':
        r += "\\r";
        break;
      case '\t':
        r += "\\t";
        break;
      case '\'':
        r += "''";
        break;
      default:
        r += c;
    }
  }
  return r;
}

std::string TModuleBDD::FormatChaine_Donnee(std::string_view s, bool sql) {
  const std::string t = Coupe(Trim(s), 20);
  return sql ? ConvertirChaineFormatSQL(t) : t;
}

}  // namespace rqbase
