// TModuleBDD : les trois listes d'un événement (tables Sources, Illustrations,
// PersAssociees) et les citations d'une personne.
//
// Sources et illustrations se rangent par leur colonne RANG, à partir de 0 (index
// ParID_EVEN : ID_EVEN, RANG, numéro) ; les personnes citées d'un événement par leur
// numéro de ligne (index ParID_EVEN : ID_EVEN, ID_PERSASSOC), et les citations d'une
// personne par leur Rang (index ParLienPers_No). Un événement n'en charge que 50 de
// chaque : les lignes au-delà ne sont ni lues ni touchées.
#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <map>

#include "rqbase/platform/chemins.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/progression.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/evenement.h"

namespace rqbase {

namespace {

// Une table des listes d'un événement : son numéro, ses colonnes de texte et leurs tailles
// (Sources : TYPE et DESCRIPTIF ; Illustrations : CHEMIN).
struct TTableListe {
  const char* Table;
  const char* ColId;
  const char* Textes[2];
  size_t Tailles[2];
  int NbTextes() const { return Textes[1] ? 2 : 1; }
};
constexpr TTableListe kSources{"Sources", "ID_SOURCE", {"TYPE", "DESCRIPTIF"}, {kLgTypeSource, kLgDescriptifSource}};
constexpr TTableListe kIllustrations{"Illustrations", "ID_ILLUSTRATION", {"CHEMIN", nullptr}, {kLgChemin, 0}};

std::string G(const char* nom) {
  return std::string("\"") + nom + "\"";
}

long Entier(SQLite::Statement& q, int col) {
  const SQLite::Column c = q.getColumn(col);
  if (c.isNull()) return 0;
  const int64_t v = c.getInt64();
  return v < INT32_MIN || v > INT32_MAX ? 0 : static_cast<long>(v);
}

std::string Coupe(const std::string& t, size_t n) {
  return t.size() > n ? t.substr(0, n) : t;
}

// Les numéros des lignes d'un événement, en ordre de rang, 50 au plus, avec leur rang.
std::vector<std::pair<long, long>> LignesDeListe(TModuleBDD& bdd, const TTableListe& t, long idEven) {
  SQLite::Statement& q = bdd.Requete("SELECT " + G(t.ColId) + ", \"RANG\" FROM " + G(t.Table) +
                                     " WHERE \"ID_EVEN\" = ? ORDER BY \"RANG\", " + G(t.ColId) + " LIMIT 50");
  q.bind(1, static_cast<int64_t>(idEven));
  std::vector<std::pair<long, long>> lignes;
  while (q.executeStep()) lignes.emplace_back(Entier(q, 0), Entier(q, 1));
  q.tryReset();
  return lignes;
}

void ChargeListe(TModuleBDD& bdd, const TTableListe& t, long idEven, int32_t* table, int taille) {
  std::fill(table, table + taille, 0);
  if (idEven == 0) return;
  const auto lignes = LignesDeListe(bdd, t, idEven);
  for (size_t i = 0; i < lignes.size() && i < static_cast<size_t>(taille); ++i)
    table[i] = static_cast<int32_t>(lignes[i].first);
}

// Les lignes d'un événement suivent la liste en mémoire : chaque numéro listé prend
// l'événement et sa position (à partir de 0) ; une ligne chargée qui n'est plus listée est
// détachée (ID_EVEN 0), son texte gardé.
long MetListeDAccord(TModuleBDD& bdd, const TTableListe& t, long idEven, const int32_t* table, int taille) {
  if (idEven == 0) return 0;
  long ecrites = 0;
  const auto lignes = LignesDeListe(bdd, t, idEven);
  std::map<long, long> rangs(lignes.begin(), lignes.end());
  const std::string lit = "SELECT \"ID_EVEN\", \"RANG\" FROM " + G(t.Table) + " WHERE " + G(t.ColId) + " = ?";
  const std::string maj = "UPDATE " + G(t.Table) + " SET \"ID_EVEN\" = ?, \"RANG\" = ? WHERE " + G(t.ColId) + " = ?";
  std::set<long> listes;
  long position = 0;
  for (int i = 0; i < taille; ++i) {
    const long id = table[i];
    if (id == 0) continue;
    listes.insert(id);
    SQLite::Statement& q = bdd.Requete(lit);
    q.bind(1, static_cast<int64_t>(id));
    const bool existe = q.executeStep();
    const long even = existe ? Entier(q, 0) : 0, rang = existe ? Entier(q, 1) : 0;
    q.tryReset();
    if (existe && (even != idEven || rang != position)) {
      SQLite::Statement& u = bdd.Requete(maj);
      u.bind(1, static_cast<int64_t>(idEven));
      u.bind(2, static_cast<int64_t>(position));
      u.bind(3, static_cast<int64_t>(id));
      ecrites += bdd.PostInTable(u);
    }
    ++position;
  }
  for (const auto& [id, rang] : lignes) {
    if (listes.count(id)) continue;
    SQLite::Statement& u = bdd.Requete("UPDATE " + G(t.Table) + " SET \"ID_EVEN\" = 0 WHERE " + G(t.ColId) + " = ?");
    u.bind(1, static_cast<int64_t>(id));
    ecrites += bdd.PostInTable(u);
  }
  return ecrites;
}

long RangSuivant(TModuleBDD& bdd, const TTableListe& t, long idEven) {
  SQLite::Statement& q = bdd.Requete("SELECT MAX(\"RANG\") FROM " + G(t.Table) + " WHERE \"ID_EVEN\" = ?");
  q.bind(1, static_cast<int64_t>(idEven));
  long r = 0;
  if (q.executeStep() && !q.getColumn(0).isNull()) r = Entier(q, 0) + 1;
  q.tryReset();
  return r;
}

// Échange les rangs de deux lignes (`colRang`) trouvées par leur numéro (`colId`), quels
// que soient leurs événements.
void Echange(TModuleBDD& bdd, const char* table, const char* colId, const char* colRang, long a, long b) {
  const std::string lit = "SELECT " + G(colRang) + " FROM " + G(table) + " WHERE " + G(colId) + " = ?";
  auto rangDe = [&](long id, long& rang) {
    SQLite::Statement& q = bdd.Requete(lit);
    q.bind(1, static_cast<int64_t>(id));
    const bool existe = q.executeStep();
    if (existe) rang = Entier(q, 0);
    q.tryReset();
    return existe;
  };
  long ra = 0, rb = 0;
  if (!rangDe(a, ra) || !rangDe(b, rb)) return;
  const std::string ecrit = "UPDATE " + G(table) + " SET " + G(colRang) + " = ? WHERE " + G(colId) + " = ?";
  for (auto [id, rang] : {std::pair<long, long>{b, ra}, std::pair<long, long>{a, rb}}) {
    SQLite::Statement& u = bdd.Requete(ecrit);
    u.bind(1, static_cast<int64_t>(rang));
    u.bind(2, static_cast<int64_t>(id));
    bdd.LignesEcrites += bdd.PostInTable(u);
  }
}

bool LigneExiste(TModuleBDD& bdd, const TTableListe& t, long id) {
  SQLite::Statement& q = bdd.Requete("SELECT 1 FROM " + G(t.Table) + " WHERE " + G(t.ColId) + " = ?");
  q.bind(1, static_cast<int64_t>(id));
  const bool existe = q.executeStep();
  q.tryReset();
  return existe;
}

long NouveauNumero(TModuleBDD& bdd, const TTableListe& t) {
  SQLite::Statement& q = bdd.Requete("INSERT INTO " + G(t.Table) + " (\"ID_EVEN\", \"RANG\") VALUES (0, 0)");
  bdd.LignesEcrites += bdd.PostInTable(q);
  return static_cast<long>(bdd.Base().getLastInsertRowid());
}

// Un numéro neuf : en import, le compteur (réservé, sans ligne) ; sinon une ligne vide.
long NumeroNeuf(TModuleBDD& bdd, const TTableListe& t, long& compteur, std::set<long>& reserves) {
  if (bdd.EnImport()) {
    const long no = compteur++;
    reserves.insert(no);
    return no;
  }
  return bdd.Protege([&] { return NouveauNumero(bdd, t); });
}

// Ce qu'une ligne tient : son événement et ses textes (dans l'ordre de t.Textes).
struct TLigneListe {
  long Id = 0;
  long NoEven = 0;
  std::string Textes[2];
};

// Les colonnes « numéro, ID_EVEN, textes » de la table, dans cet ordre.
std::string Colonnes(const TTableListe& t) {
  std::string c = G(t.ColId) + ", \"ID_EVEN\"";
  for (int k = 0; k < t.NbTextes(); ++k) c += ", " + G(t.Textes[k]);
  return c;
}

TLigneListe LitLigneListe(const TTableListe& t, SQLite::Statement& q) {
  TLigneListe l;
  l.Id = Entier(q, 0);
  l.NoEven = Entier(q, 1);
  for (int k = 0; k < t.NbTextes(); ++k) l.Textes[k] = TModuleBDD::TexteColonne(q, 2 + k);
  return l;
}

bool ChercheLigneListe(TModuleBDD& bdd, const TTableListe& t, long id, TLigneListe& l) {
  SQLite::Statement& q = bdd.Requete("SELECT " + Colonnes(t) + " FROM " + G(t.Table) + " WHERE " + G(t.ColId) + " = ?");
  q.bind(1, static_cast<int64_t>(id));
  const bool trouve = q.executeStep();
  if (trouve) l = LitLigneListe(t, q);
  q.tryReset();
  return trouve;
}

// Enregistre une source ou une illustration : la ligne du numéro, si elle existe et que
// le numéro n'est pas réservé par l'import, est réécrite quand quelque chose y change ;
// sinon une ligne est insérée au bout de la liste de l'événement (numéro imposé s'il en a
// un). Les rangs de l'événement, et de celui qu'elle quitte, sont refaits. Rend vrai si
// une ligne a été écrite.
bool EnregistreLigneListe(TModuleBDD& bdd, const TTableListe& t, long& no, long noEven, const std::string (&textes)[2],
                          std::set<long>& reserves) {
  TLigneListe ancienne;
  const bool existe = !reserves.count(no) && no > 0 && ChercheLigneListe(bdd, t, no, ancienne);
  std::string nouveaux[2];
  bool change = !existe || ancienne.NoEven != noEven;
  for (int k = 0; k < t.NbTextes(); ++k) {
    nouveaux[k] = Coupe(textes[k], t.Tailles[k]);
    change = change || Coupe(ancienne.Textes[k], t.Tailles[k]) != nouveaux[k];
  }
  if (!change) return false;
  std::string sql;
  if (existe) {
    sql = "UPDATE " + G(t.Table) + " SET \"ID_EVEN\" = ?";
    for (int k = 0; k < t.NbTextes(); ++k) sql += ", " + G(t.Textes[k]) + " = ?";
    sql += " WHERE " + G(t.ColId) + " = ?";
  } else {
    sql = "INSERT INTO " + G(t.Table) + " (\"ID_EVEN\"";
    std::string valeurs = "?";
    for (int k = 0; k < t.NbTextes(); ++k) {
      sql += ", " + G(t.Textes[k]);
      valeurs += ", ?";
    }
    sql += ", \"RANG\", " + G(t.ColId) + ") VALUES (" + valeurs + ", ?, ?)";
  }
  SQLite::Statement& u = bdd.Requete(sql);
  int i = 1;
  u.bind(i++, static_cast<int64_t>(noEven));
  for (int k = 0; k < t.NbTextes(); ++k) TModuleBDD::LieTexte(u, i++, nouveaux[k]);
  if (!existe) u.bind(i++, static_cast<int64_t>(RangSuivant(bdd, t, noEven)));
  if (existe || no > 0)
    u.bind(i, static_cast<int64_t>(no));
  else
    u.bind(i);
  bdd.LignesEcrites += bdd.PostInTable(u);
  if (!existe) {
    if (no <= 0) no = static_cast<long>(bdd.Base().getLastInsertRowid());
    reserves.erase(no);
  }
  if (noEven != 0) bdd.UpdateRang(t.Table, noEven);
  if (ancienne.NoEven != 0 && ancienne.NoEven != noEven) bdd.UpdateRang(t.Table, ancienne.NoEven);
  return true;
}

// L'objet d'une ligne.
void Remplit(TSource& s, const TLigneListe& l) {
  s.No = l.Id;
  s.NoEven = l.NoEven;
  s.SetType(l.Textes[0]);
  s.SetDescriptif(l.Textes[1]);
}

void Remplit(TIllustration& i, const TLigneListe& l) {
  i.No = l.Id;
  i.NoEven = l.NoEven;
  i.SetChemin(l.Textes[0]);
}

// La ligne du numéro de l'objet ; introuvable, l'objet reste vierge (son numéro gardé).
template <typename T>
bool LitObjet(TModuleBDD& bdd, const TTableListe& t, T& objet) {
  const long no = objet.No;
  objet.NoEven = 0;
  objet.Enreg = typename T::TEnreg();
  if (no <= 0) return false;
  return bdd.Protege([&] {
    TLigneListe l;
    if (!ChercheLigneListe(bdd, t, no, l)) return false;
    Remplit(objet, l);
    return true;
  });
}

}  // namespace

// --- Sources ---

bool TModuleBDD::LectureSource(TSource* s) {
  return LitObjet(*this, kSources, *s);
}

void TModuleBDD::GetSource(TSource* s, SQLite::Statement& ligne) {
  Remplit(*s, Protege([&] { return LitLigneListe(kSources, ligne); }));
}

bool TModuleBDD::NoSourceExists(long id) {
  return Protege([&] { return LigneExiste(*this, kSources, id); });
}

long TModuleBDD::ReturnNewNumSource() {
  return NumeroNeuf(*this, kSources, PremierNumSource, ReservesSources);
}

bool TModuleBDD::EnregistrementSource(TSource* s) {
  return Protege([&] {
    if (s->No == 0 && EnImport()) s->No = ReturnNewNumSource();
    return EnregistreLigneListe(*this, kSources, s->No, s->NoEven, {s->Enreg.Type, s->Enreg.Descriptif},
                                ReservesSources);
  });
}

long TModuleBDD::AjouterEltTableSource(TSource* s) {
  if (!ReservesSources.count(s->No)) s->No = 0;
  EnregistrementSource(s);
  return s->No;
}

void TModuleBDD::SwapSources(long a, long b) {
  Protege([&] { Echange(*this, kSources.Table, kSources.ColId, "RANG", a, b); });
}

// --- Illustrations ---

bool TModuleBDD::LectureIllustration(TIllustration* i) {
  return LitObjet(*this, kIllustrations, *i);
}

void TModuleBDD::GetIllustration(TIllustration* i, SQLite::Statement& ligne) {
  Remplit(*i, Protege([&] { return LitLigneListe(kIllustrations, ligne); }));
}

bool TModuleBDD::NoIllustrationExists(long id) {
  return Protege([&] { return LigneExiste(*this, kIllustrations, id); });
}

long TModuleBDD::ReturnNewNumIllustration() {
  return NumeroNeuf(*this, kIllustrations, PremierNumIllustration, ReservesIllustrations);
}

bool TModuleBDD::EnregistrementIllustration(TIllustration* il) {
  return Protege([&] {
    if (il->No == 0 && EnImport()) il->No = ReturnNewNumIllustration();
    return EnregistreLigneListe(*this, kIllustrations, il->No, il->NoEven, {il->Enreg.Chemin, std::string()},
                                ReservesIllustrations);
  });
}

long TModuleBDD::AjouterEltTableIllustration(TIllustration* i) {
  if (!ReservesIllustrations.count(i->No)) i->No = 0;
  EnregistrementIllustration(i);
  return i->No;
}

void TModuleBDD::SwapIllustrations(long a, long b) {
  Protege([&] { Echange(*this, kIllustrations.Table, kIllustrations.ColId, "RANG", a, b); });
}

long TModuleBDD::GetNbIllustration(long idEven) {
  return Protege([&] {
    SQLite::Statement& q = Requete("SELECT COUNT(*) FROM \"Illustrations\" WHERE \"ID_EVEN\" = ?");
    q.bind(1, static_cast<int64_t>(idEven));
    long n = 0;
    if (q.executeStep()) n = Entier(q, 0);
    q.tryReset();
    return n;
  });
}

void TModuleBDD::SetIllustrationDefault(long noPers, long idEven, long illustration) {
  Protege([&] {
    // Une seule illustration par défaut pour une personne : toutes les autres sont levées.
    SQLite::Statement& a = Requete("UPDATE \"Evenements\" SET \"NoIllustrationParDefaut\" = -1 WHERE \"NoPersA\" = ?");
    a.bind(1, static_cast<int64_t>(noPers));
    LignesEcrites += PostInTable(a);
    SQLite::Statement& b =
        Requete("UPDATE \"Evenements\" SET \"NoIllustrationParDefaut\" = ? WHERE \"NoPersA\" = ? AND \"ID\" = ?");
    b.bind(1, static_cast<int64_t>(illustration));
    b.bind(2, static_cast<int64_t>(noPers));
    b.bind(3, static_cast<int64_t>(idEven));
    LignesEcrites += PostInTable(b);
  });
}

// --- Les listes d'un événement ---

void TModuleBDD::ChargerSourceOfEven(TEvenement::TEnreg* e) {
  e->SourcesChargees = true;
  Protege([&] { ChargeListe(*this, kSources, e->No, e->Sources, kNbSourcesEven); });
}

void TModuleBDD::ChargerIllustrationOfEven(TEvenement::TEnreg* e) {
  e->IllustrationsChargees = true;
  Protege([&] { ChargeListe(*this, kIllustrations, e->No, e->Illustrations, kNbIllustrationsEven); });
}

void TModuleBDD::ChargerPersAssocieeOfEven(TEvenement::TEnreg* e) {
  e->PersAssocieesChargees = true;
  for (auto& p : e->PersAssociees) p = TPersAssociee();
  if (e->No == 0) return;
  Protege([&] {
    SQLite::Statement& q = Requete(
        "SELECT \"LienPers_No\", \"LienPers_NivNo\", \"LienQualite\", \"LienParente\" FROM \"PersAssociees\" WHERE "
        "\"ID_EVEN\" = ? ORDER BY \"ID_PERSASSOC\" LIMIT 50");
    q.bind(1, static_cast<int64_t>(e->No));
    int i = 0;
    while (i < kNbPersAssocieesEven && q.executeStep()) {
      const std::string niv = TexteColonne(q, 1);
      TPersAssociee p;
      p.Lien = TLienPers(Entier(q, 0), niv.empty() ? 0 : static_cast<uint8_t>(niv[0]));
      p.LienQualite = static_cast<int32_t>(Entier(q, 2));
      p.LienParente = static_cast<int32_t>(Entier(q, 3));
      e->PersAssociees[i++] = p;
    }
    q.tryReset();
  });
}

long TModuleBDD::UpdaterSourceOfEven(TEvenement* ev) {
  if (!ev->Enreg.SourcesChargees) return 0;
  return Protege([&] {
    const long n = MetListeDAccord(*this, kSources, ev->Enreg.No, ev->Enreg.Sources, kNbSourcesEven);
    LignesEcrites += n;
    return n;
  });
}

long TModuleBDD::UpdaterIllustrationOfEven(TEvenement* ev) {
  if (!ev->Enreg.IllustrationsChargees) return 0;
  return Protege([&] {
    const long n = MetListeDAccord(*this, kIllustrations, ev->Enreg.No, ev->Enreg.Illustrations, kNbIllustrationsEven);
    LignesEcrites += n;
    return n;
  });
}

long TModuleBDD::UpdateRang(const std::string& table, long idEven) {
  const TTableListe& t = table == "Sources" ? kSources : kIllustrations;
  return Protege([&] {
    SQLite::Statement& q = Requete("SELECT " + G(t.ColId) + ", \"RANG\" FROM " + G(t.Table) +
                                   " WHERE \"ID_EVEN\" = ? ORDER BY \"RANG\", " + G(t.ColId));
    q.bind(1, static_cast<int64_t>(idEven));
    // Lues d'abord, écrites ensuite : une écriture pendant le parcours déplacerait le curseur.
    std::map<long, long> aChanger;
    long position = 0;
    while (q.executeStep()) {
      if (Entier(q, 1) != position) aChanger[Entier(q, 0)] = position;
      ++position;
    }
    q.tryReset();
    long ecrites = 0;
    for (const auto& [id, rang] : aChanger) {
      SQLite::Statement& u = Requete("UPDATE " + G(t.Table) + " SET \"RANG\" = ? WHERE " + G(t.ColId) + " = ?");
      u.bind(1, static_cast<int64_t>(rang));
      u.bind(2, static_cast<int64_t>(id));
      ecrites += PostInTable(u);
    }
    LignesEcrites += ecrites;
    return ecrites;
  });
}

long TModuleBDD::EnregistrementPersAssociees(TEvenement* ev) {
  if (!ev->Enreg.PersAssocieesChargees || ev->Enreg.No == 0) return 0;
  return Protege([&] {
    TEvenement::TEnreg& e = ev->Enreg;
    struct TLigneP {
      long Id;
      TPersAssociee P;
    };
    std::vector<TLigneP> lignes;
    {
      SQLite::Statement& q = Requete(
          "SELECT \"ID_PERSASSOC\", \"LienPers_No\", \"LienPers_NivNo\", \"LienQualite\", \"LienParente\" FROM "
          "\"PersAssociees\" WHERE \"ID_EVEN\" = ? ORDER BY \"ID_PERSASSOC\" LIMIT 50");
      q.bind(1, static_cast<int64_t>(e.No));
      while (q.executeStep()) {
        const std::string niv = TexteColonne(q, 2);
        TLigneP l{Entier(q, 0), {}};
        l.P.Lien = TLienPers(Entier(q, 1), niv.empty() ? 0 : static_cast<uint8_t>(niv[0]));
        l.P.LienQualite = static_cast<int32_t>(Entier(q, 3));
        l.P.LienParente = static_cast<int32_t>(Entier(q, 4));
        lignes.push_back(l);
      }
      q.tryReset();
    }
    long ecrites = 0;
    bool utilise[kNbPersAssocieesEven] = {};
    for (const TLigneP& l : lignes) {
      const int i = l.P.Lien.No == 0 ? -1 : e.ChercheRgNoPersAssociee(l.P.Lien.No);
      if (i >= 0 && !utilise[i]) {
        utilise[i] = true;
        if (e.PersAssociees[i] == l.P) continue;
        ecrites += EcritPersAssociee(e, i, l.Id);
      } else {
        SQLite::Statement& d = Requete("DELETE FROM \"PersAssociees\" WHERE \"ID_PERSASSOC\" = ?");
        d.bind(1, static_cast<int64_t>(l.Id));
        ecrites += PostInTable(d);
      }
      ChasseDuCache(l.P.Lien.No);
    }
    for (int i = 0; i < kNbPersAssocieesEven; ++i) {
      if (e.PersAssociees[i].Vide() || utilise[i]) continue;
      ecrites += EcritPersAssociee(e, i, 0);
    }
    LignesEcrites += ecrites;
    return ecrites;
  });
}

long TModuleBDD::EcritPersAssociee(const TEvenement::TEnreg& e, int i, long idLigne) {
  const TPersAssociee& p = e.PersAssociees[i];
  const std::string niveau = p.Lien.Octet == 0 ? std::string() : std::string(1, static_cast<char>(p.Lien.Octet));
  long ecrites = 0;
  if (idLigne != 0) {
    SQLite::Statement& u = Requete(
        "UPDATE \"PersAssociees\" SET \"LienQualite\" = ?, \"LienParente\" = ?, \"LienPers_No\" = ?, "
        "\"LienPers_NivNo\" = ?, \"ID_EVEN\" = ? WHERE \"ID_PERSASSOC\" = ?");
    u.bind(1, p.LienQualite);
    u.bind(2, p.LienParente);
    u.bind(3, p.Lien.No);
    LieTexte(u, 4, niveau);
    u.bind(5, static_cast<int64_t>(e.No));
    u.bind(6, static_cast<int64_t>(idLigne));
    ecrites = PostInTable(u);
  } else {
    // Une citation neuve vient en dernier parmi celles de la personne citée.
    SQLite::Statement& r = Requete("SELECT MAX(\"Rang\") FROM \"PersAssociees\" WHERE \"LienPers_No\" = ?");
    r.bind(1, p.Lien.No);
    long rang = 1;
    if (r.executeStep() && !r.getColumn(0).isNull()) rang = Entier(r, 0) + 1;
    r.tryReset();
    SQLite::Statement& u = Requete(
        "INSERT INTO \"PersAssociees\" (\"ID_EVEN\", \"LienQualite\", \"LienParente\", \"LienPers_No\", "
        "\"LienPers_NivNo\", \"Rang\") VALUES (?, ?, ?, ?, ?, ?)");
    u.bind(1, static_cast<int64_t>(e.No));
    u.bind(2, p.LienQualite);
    u.bind(3, p.LienParente);
    u.bind(4, p.Lien.No);
    LieTexte(u, 5, niveau);
    u.bind(6, static_cast<int64_t>(rang));
    ecrites = PostInTable(u);
    ChasseDuCache(p.Lien.No);
  }
  return ecrites;
}

bool TModuleBDD::SetPersAssociee(TEvenement* ev, int i, bool insertion) {
  const TEvenement::TEnreg& e = ev->Enreg;
  if (i < 0 || i >= kNbPersAssocieesEven || e.PersAssociees[i].Vide() || e.No == 0) return false;
  return Protege([&] {
    long idLigne = 0;
    if (!insertion) {
      SQLite::Statement& q = Requete(
          "SELECT \"ID_PERSASSOC\" FROM \"PersAssociees\" WHERE \"ID_EVEN\" = ? AND \"LienPers_No\" = ? ORDER BY "
          "\"ID_PERSASSOC\" LIMIT 1");
      q.bind(1, static_cast<int64_t>(e.No));
      q.bind(2, e.PersAssociees[i].Lien.No);
      if (q.executeStep()) idLigne = Entier(q, 0);
      q.tryReset();
      if (idLigne == 0) return false;
    }
    const long n = EcritPersAssociee(e, i, idLigne);
    LignesEcrites += n;
    ChasseDuCache(e.PersAssociees[i].Lien.No);
    return n > 0;
  });
}

void TModuleBDD::SwapPersAssociees(long a, long b) {
  Protege([&] { Echange(*this, "PersAssociees", "ID_PERSASSOC", "Rang", a, b); });
}

// --- Citations d'une personne ---

void TModuleBDD::ChargerCitationsDePersonne(long no, std::vector<long>& evens) {
  evens.clear();
  if (no <= 0) return;
  Protege([&] {
    SQLite::Statement& q = Requete(
        "SELECT \"ID_EVEN\" FROM \"PersAssociees\" WHERE \"LienPers_No\" = ? ORDER BY \"Rang\", \"ID_PERSASSOC\" "
        "LIMIT 100");
    q.bind(1, static_cast<int64_t>(no));
    while (q.executeStep()) evens.push_back(Entier(q, 0));
    q.tryReset();
  });
}

void TModuleBDD::EnregistreOrdreCitations(long no, const std::vector<long>& evens) {
  if (no <= 0) return;
  Protege([&] {
    SQLite::Statement& q =
        Requete("SELECT \"ID_PERSASSOC\", \"ID_EVEN\", \"Rang\" FROM \"PersAssociees\" WHERE \"LienPers_No\" = ?");
    q.bind(1, static_cast<int64_t>(no));
    std::map<long, long> aChanger;
    while (q.executeStep()) {
      const auto it = std::find(evens.begin(), evens.end(), Entier(q, 1));
      if (it == evens.end()) continue;
      const long rang = static_cast<long>(it - evens.begin()) + 1;
      if (Entier(q, 2) != rang) aChanger[Entier(q, 0)] = rang;
    }
    q.tryReset();
    for (const auto& [id, rang] : aChanger) {
      SQLite::Statement& u = Requete("UPDATE \"PersAssociees\" SET \"Rang\" = ? WHERE \"ID_PERSASSOC\" = ?");
      u.bind(1, static_cast<int64_t>(rang));
      u.bind(2, static_cast<int64_t>(id));
      LignesEcrites += PostInTable(u);
    }
  });
}

bool TModuleBDD::PersIsCitee(long no) {
  if (no == 0) return false;
  return Protege([&] {
    SQLite::Statement& q = Requete("SELECT 1 FROM \"PersAssociees\" WHERE \"LienPers_No\" = ? LIMIT 1");
    q.bind(1, static_cast<int64_t>(no));
    const bool cite = q.executeStep();
    q.tryReset();
    return cite;
  });
}

void TModuleBDD::UpdatePersCiteeBuffer(long idEven) {
  Protege([&] {
    SQLite::Statement& q = Requete("SELECT \"LienPers_No\" FROM \"PersAssociees\" WHERE \"ID_EVEN\" = ?");
    q.bind(1, static_cast<int64_t>(idEven));
    std::vector<long> cites;
    while (q.executeStep()) cites.push_back(Entier(q, 0));
    q.tryReset();
    for (long no : cites) ChasseDuCache(no);
  });
}

void TModuleBDD::RecupeNumPersABEven(long idEven, std::set<long>* numeros) {
  if (!numeros) return;
  Protege([&] {
    SQLite::Statement& q = Requete("SELECT \"NoPersA\", \"NoPersB\" FROM \"Evenements\" WHERE \"ID\" = ?");
    q.bind(1, static_cast<int64_t>(idEven));
    if (q.executeStep())
      for (int c = 0; c < 2; ++c)
        if (Entier(q, c) != 0) numeros->insert(Entier(q, c));
    q.tryReset();
  });
}

void TModuleBDD::MasquerPersAssociee(long idEven, bool masquer) {
  Protege([&] {
    // Seules les lignes du bon signe changent : cacher deux fois ne rend rien visible.
    SQLite::Statement& q =
        Requete(masquer ? "UPDATE \"PersAssociees\" SET \"LienPers_No\" = -\"LienPers_No\" WHERE \"ID_EVEN\" = ? AND "
                          "\"LienPers_No\" > 0"
                        : "UPDATE \"PersAssociees\" SET \"LienPers_No\" = -\"LienPers_No\" WHERE \"ID_EVEN\" = ? AND "
                          "\"LienPers_No\" < 0");
    q.bind(1, static_cast<int64_t>(masquer ? idEven : idEven));
    LignesEcrites += PostInTable(q);
  });
}

void TModuleBDD::MasquerCitationsOfPerson(long no, bool restaure) {
  if (no <= 0) return;
  Protege([&] {
    SQLite::Statement& q =
        Requete(restaure ? "UPDATE \"PersAssociees\" SET \"ID_EVEN\" = -\"ID_EVEN\" WHERE \"LienPers_No\" = ? AND "
                           "\"ID_EVEN\" < 0"
                         : "UPDATE \"PersAssociees\" SET \"ID_EVEN\" = -\"ID_EVEN\" WHERE \"LienPers_No\" = ? AND "
                           "\"ID_EVEN\" > 0");
    q.bind(1, static_cast<int64_t>(no));
    LignesEcrites += PostInTable(q);
  });
}

// --- Illustrations que plus aucun événement ne tient ---

namespace {

namespace fs = std::filesystem;

// Les fichiers ordinaires sous Images/ (un lien symbolique n'est ni suivi ni compté), chemins
// internes absolus, dans l'ordre du nom.
std::vector<std::string> FichiersImages(const std::string& dossier) {
  std::vector<std::string> r;
  std::error_code ec;
  const fs::path images = CheminOs(dossier + "/Images");
  if (!fs::is_directory(fs::symlink_status(images, ec))) return r;
  for (fs::recursive_directory_iterator it(images, ec), fin; !ec && it != fin; it.increment(ec)) {
    if (fs::is_regular_file(it->symlink_status(ec))) r.push_back(CheminInterne(it->path().lexically_normal()));
  }
  std::sort(r.begin(), r.end());
  return r;
}

std::string DossierDeLaBase(const std::string& cheminAdb) {
  const size_t slash = cheminAdb.find_last_of('/');
  return slash == std::string::npos ? "." : cheminAdb.substr(0, slash);
}

}  // namespace

std::vector<std::string> TModuleBDD::CheminsIllustrationsUtilisees() {
  const std::string dossier = DossierDeLaBase(CheminAdb);
  return Protege([&] {
    std::vector<std::string> r;
    SQLite::Statement& q =
        Requete("SELECT \"CHEMIN\" FROM \"Illustrations\" WHERE \"ID_EVEN\" > 0 ORDER BY \"ID_EVEN\", \"RANG\"");
    while (q.executeStep()) {
      std::string chemin = TexteColonne(q, 0);
      // Les chemins écrits par les versions d'avant séparent par « \ ».
      std::replace(chemin.begin(), chemin.end(), '\\', '/');
      if (chemin.empty()) continue;
      const fs::path absolu = chemin[0] == '/' ? CheminOs(chemin) : CheminOs(dossier + "/" + chemin);
      r.push_back(CheminInterne(absolu.lexically_normal()));
    }
    q.tryReset();
    std::sort(r.begin(), r.end());
    return r;
  });
}

void TModuleBDD::ChargeIllustrationsNonUtilisees(TProgression* progression, std::vector<std::string>& liste) {
  liste.clear();
  const std::vector<std::string> utilisees = CheminsIllustrationsUtilisees();
  const std::vector<std::string> fichiers = FichiersImages(DossierDeLaBase(CheminAdb));
  if (progression) progression->Maximum(static_cast<long>(fichiers.size()));
  for (const std::string& f : fichiers) {
    if (progression) {
      if (progression->Abandon()) return;
      progression->Avance();
    }
    const size_t point = f.find_last_of('.');
    if (point != std::string::npos && MajusculesCp1252(f.substr(point)) == ".IEV") continue;
    if (!std::binary_search(utilisees.begin(), utilisees.end(), f)) liste.push_back(f);
  }
}

void TModuleBDD::CleanIllustrationsNonUtilisees(TProgression* progression, int& nb) {
  nb = 0;
  const std::vector<std::string> utilisees = CheminsIllustrationsUtilisees();
  const std::vector<std::string> fichiers = FichiersImages(DossierDeLaBase(CheminAdb));
  if (progression) progression->Maximum(static_cast<long>(fichiers.size()));
  for (const std::string& f : fichiers) {
    if (progression) {
      if (progression->Abandon()) return;
      progression->Avance();
    }
    if (std::binary_search(utilisees.begin(), utilisees.end(), f)) continue;
    std::error_code ec;
    // Revu juste avant : un fichier remplacé entre-temps par un lien n'est pas suivi.
    if (!fs::is_regular_file(fs::symlink_status(CheminOs(f), ec))) continue;
    if (fs::remove(CheminOs(f), ec)) ++nb;
  }
}

}  // namespace rqbase
