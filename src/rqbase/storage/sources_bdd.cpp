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

struct TTableListe {
  const char* Table;
  const char* ColId;
};
constexpr TTableListe kSources{"Sources", "ID_SOURCE"};
constexpr TTableListe kIllustrations{"Illustrations", "ID_ILLUSTRATION"};

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

void Echange(TModuleBDD& bdd, const TTableListe& t, long a, long b) {
  const std::string lit = "SELECT \"RANG\" FROM " + G(t.Table) + " WHERE " + G(t.ColId) + " = ?";
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
  const std::string ecrit = "UPDATE " + G(t.Table) + " SET \"RANG\" = ? WHERE " + G(t.ColId) + " = ?";
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

}  // namespace

// --- Sources ---

bool TModuleBDD::LectureSource(TSource* s) {
  const long no = s->No;
  s->NoEven = 0;
  s->Enreg = TSource::TEnreg();
  if (no <= 0) return false;
  return Protege([&] {
    SQLite::Statement& q =
        Requete("SELECT \"ID_EVEN\", \"TYPE\", \"DESCRIPTIF\" FROM \"Sources\" WHERE \"ID_SOURCE\" = ?");
    q.bind(1, static_cast<int64_t>(no));
    const bool trouve = q.executeStep();
    if (trouve) {
      s->NoEven = Entier(q, 0);
      s->SetType(TexteColonne(q, 1));
      s->SetDescriptif(TexteColonne(q, 2));
    }
    q.tryReset();
    return trouve;
  });
}

bool TModuleBDD::NoSourceExists(long id) {
  return Protege([&] { return LigneExiste(*this, kSources, id); });
}

long TModuleBDD::ReturnNewNumSource() {
  if (EnImport()) {
    const long no = PremierNumSource++;
    ReservesSources.insert(no);
    return no;
  }
  return Protege([&] { return NouveauNumero(*this, kSources); });
}

bool TModuleBDD::EnregistrementSource(TSource* s) {
  return Protege([&] {
    if (s->No == 0 && EnImport()) s->No = ReturnNewNumSource();
    const bool reserve = ReservesSources.count(s->No) != 0;
    long ancienEven = 0;
    bool existe = false;
    std::string type, descriptif;
    if (!reserve && s->No > 0) {
      SQLite::Statement& q =
          Requete("SELECT \"ID_EVEN\", \"TYPE\", \"DESCRIPTIF\" FROM \"Sources\" WHERE \"ID_SOURCE\" = ?");
      q.bind(1, static_cast<int64_t>(s->No));
      existe = q.executeStep();
      if (existe) {
        ancienEven = Entier(q, 0);
        type = TexteColonne(q, 1);
        descriptif = TexteColonne(q, 2);
      }
      q.tryReset();
    }
    const std::string nType = Coupe(s->Enreg.Type, kLgTypeSource);
    const std::string nDesc = Coupe(s->Enreg.Descriptif, kLgDescriptifSource);
    bool ecrit = false;
    if (existe) {
      if (ancienEven != s->NoEven || Coupe(type, kLgTypeSource) != nType ||
          Coupe(descriptif, kLgDescriptifSource) != nDesc) {
        SQLite::Statement& u =
            Requete("UPDATE \"Sources\" SET \"ID_EVEN\" = ?, \"TYPE\" = ?, \"DESCRIPTIF\" = ? WHERE \"ID_SOURCE\" = ?");
        u.bind(1, static_cast<int64_t>(s->NoEven));
        LieTexte(u, 2, nType);
        LieTexte(u, 3, nDesc);
        u.bind(4, static_cast<int64_t>(s->No));
        LignesEcrites += PostInTable(u);
        ecrit = true;
      }
    } else {
      SQLite::Statement& u = Requete(
          "INSERT INTO \"Sources\" (\"ID_SOURCE\", \"ID_EVEN\", \"TYPE\", \"DESCRIPTIF\", \"RANG\") VALUES (?, ?, ?, "
          "?, ?)");
      if (s->No > 0)
        u.bind(1, static_cast<int64_t>(s->No));
      else
        u.bind(1);
      u.bind(2, static_cast<int64_t>(s->NoEven));
      LieTexte(u, 3, nType);
      LieTexte(u, 4, nDesc);
      u.bind(5, static_cast<int64_t>(RangSuivant(*this, kSources, s->NoEven)));
      LignesEcrites += PostInTable(u);
      if (s->No <= 0) s->No = static_cast<long>(Base().getLastInsertRowid());
      ReservesSources.erase(s->No);
      ecrit = true;
    }
    if (ecrit && s->NoEven != 0) UpdateRang("Sources", s->NoEven);
    if (ecrit && ancienEven != 0 && ancienEven != s->NoEven) UpdateRang("Sources", ancienEven);
    return ecrit;
  });
}

void TModuleBDD::SwapSources(long a, long b) {
  Protege([&] { Echange(*this, kSources, a, b); });
}

// --- Illustrations ---

bool TModuleBDD::LectureIllustration(TIllustration* i) {
  const long no = i->No;
  i->NoEven = 0;
  i->Enreg = TIllustration::TEnreg();
  if (no <= 0) return false;
  return Protege([&] {
    SQLite::Statement& q =
        Requete("SELECT \"ID_EVEN\", \"CHEMIN\" FROM \"Illustrations\" WHERE \"ID_ILLUSTRATION\" = ?");
    q.bind(1, static_cast<int64_t>(no));
    const bool trouve = q.executeStep();
    if (trouve) {
      i->NoEven = Entier(q, 0);
      i->SetChemin(TexteColonne(q, 1));
    }
    q.tryReset();
    return trouve;
  });
}

bool TModuleBDD::NoIllustrationExists(long id) {
  return Protege([&] { return LigneExiste(*this, kIllustrations, id); });
}

long TModuleBDD::ReturnNewNumIllustration() {
  if (EnImport()) {
    const long no = PremierNumIllustration++;
    ReservesIllustrations.insert(no);
    return no;
  }
  return Protege([&] { return NouveauNumero(*this, kIllustrations); });
}

bool TModuleBDD::EnregistrementIllustration(TIllustration* il) {
  return Protege([&] {
    if (il->No == 0 && EnImport()) il->No = ReturnNewNumIllustration();
    const bool reserve = ReservesIllustrations.count(il->No) != 0;
    long ancienEven = 0;
    bool existe = false;
    std::string chemin;
    if (!reserve && il->No > 0) {
      SQLite::Statement& q =
          Requete("SELECT \"ID_EVEN\", \"CHEMIN\" FROM \"Illustrations\" WHERE \"ID_ILLUSTRATION\" = ?");
      q.bind(1, static_cast<int64_t>(il->No));
      existe = q.executeStep();
      if (existe) {
        ancienEven = Entier(q, 0);
        chemin = TexteColonne(q, 1);
      }
      q.tryReset();
    }
    const std::string nChemin = Coupe(il->Enreg.Chemin, kLgChemin);
    bool ecrit = false;
    if (existe) {
      if (ancienEven != il->NoEven || Coupe(chemin, kLgChemin) != nChemin) {
        SQLite::Statement& u =
            Requete("UPDATE \"Illustrations\" SET \"ID_EVEN\" = ?, \"CHEMIN\" = ? WHERE \"ID_ILLUSTRATION\" = ?");
        u.bind(1, static_cast<int64_t>(il->NoEven));
        LieTexte(u, 2, nChemin);
        u.bind(3, static_cast<int64_t>(il->No));
        LignesEcrites += PostInTable(u);
        ecrit = true;
      }
    } else {
      SQLite::Statement& u = Requete(
          "INSERT INTO \"Illustrations\" (\"ID_ILLUSTRATION\", \"ID_EVEN\", \"CHEMIN\", \"RANG\") VALUES (?, ?, ?, ?)");
      if (il->No > 0)
        u.bind(1, static_cast<int64_t>(il->No));
      else
        u.bind(1);
      u.bind(2, static_cast<int64_t>(il->NoEven));
      LieTexte(u, 3, nChemin);
      u.bind(4, static_cast<int64_t>(RangSuivant(*this, kIllustrations, il->NoEven)));
      LignesEcrites += PostInTable(u);
      if (il->No <= 0) il->No = static_cast<long>(Base().getLastInsertRowid());
      ReservesIllustrations.erase(il->No);
      ecrit = true;
    }
    if (ecrit && il->NoEven != 0) UpdateRang("Illustrations", il->NoEven);
    if (ecrit && ancienEven != 0 && ancienEven != il->NoEven) UpdateRang("Illustrations", ancienEven);
    return ecrit;
  });
}

void TModuleBDD::SwapIllustrations(long a, long b) {
  Protege([&] { Echange(*this, kIllustrations, a, b); });
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
    auto niveau = [](uint8_t o) { return o == 0 ? std::string() : std::string(1, static_cast<char>(o)); };
    for (const TLigneP& l : lignes) {
      const int i = l.P.Lien.No == 0 ? -1 : e.ChercheRgNoPersAssociee(l.P.Lien.No);
      if (i >= 0 && !utilise[i]) {
        utilise[i] = true;
        if (e.PersAssociees[i] == l.P) continue;
        SQLite::Statement& u = Requete(
            "UPDATE \"PersAssociees\" SET \"LienQualite\" = ?, \"LienParente\" = ?, \"LienPers_No\" = ?, "
            "\"LienPers_NivNo\" = ? WHERE \"ID_PERSASSOC\" = ?");
        u.bind(1, e.PersAssociees[i].LienQualite);
        u.bind(2, e.PersAssociees[i].LienParente);
        u.bind(3, e.PersAssociees[i].Lien.No);
        LieTexte(u, 4, niveau(e.PersAssociees[i].Lien.Octet));
        u.bind(5, static_cast<int64_t>(l.Id));
        ecrites += PostInTable(u);
      } else {
        SQLite::Statement& d = Requete("DELETE FROM \"PersAssociees\" WHERE \"ID_PERSASSOC\" = ?");
        d.bind(1, static_cast<int64_t>(l.Id));
        ecrites += PostInTable(d);
      }
      ChasseDuCache(l.P.Lien.No);
    }
    for (int i = 0; i < kNbPersAssocieesEven; ++i) {
      const TPersAssociee& p = e.PersAssociees[i];
      if (p.Vide() || utilise[i]) continue;
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
      LieTexte(u, 5, niveau(p.Lien.Octet));
      u.bind(6, static_cast<int64_t>(rang));
      ecrites += PostInTable(u);
      ChasseDuCache(p.Lien.No);
    }
    LignesEcrites += ecrites;
    return ecrites;
  });
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
