// TModuleBDD : les requêtes des écrans de recherche sur les événements. Les critères
// absents n'ajoutent rien au texte de la requête ; les valeurs sont toujours liées.
#include <SQLiteCpp/SQLiteCpp.h>

#include <climits>

#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/util/chaines.h"

namespace rqbase {

namespace {

long Entier(SQLite::Statement& q, int col) {
  const SQLite::Column c = q.getColumn(col);
  if (c.isNull()) return 0;
  const int64_t v = c.getInt64();
  return v < INT32_MIN || v > INT32_MAX ? 0 : static_cast<long>(v);
}

// La clause WHERE d'un filtre, paramètres nommés ; `libelle` reçoit le libellé à lier.
std::string Clause(const TStructFilterEvent& f, std::string* libelle) {
  std::string w = "WHERE \"Type\" = 0";
  if (!f.Libelle.empty()) {
    w += " AND \"LibelleChamps\" = :lib";
    *libelle = Trim(f.Libelle).substr(0, kLgLibelle);
  }
  if (f.Lieu != 0) {
    w += " AND \"Lieu\" = :lieu";
  }
  if (f.DateMin != 0) {
    w += " AND \"_DATE\" >= :min";
  }
  if (f.DateMax != 0) {
    w += " AND \"_DATE\" <= :max";
  }
  if (f.NoPers != 0) {
    w += " AND (\"NoPersA\" = :no OR \"NoPersB\" = :no)";
  }
  return w;
}

void Lie(SQLite::Statement& q, const TStructFilterEvent& f, const std::string& libelle) {
  if (!f.Libelle.empty()) TModuleBDD::LieTexte(q, q.getIndex(":lib"), libelle);
  if (f.Lieu != 0) q.bind(":lieu", static_cast<int64_t>(f.Lieu));
  if (f.DateMin != 0) q.bind(":min", static_cast<int64_t>(f.DateMin));
  if (f.DateMax != 0) q.bind(":max", static_cast<int64_t>(f.DateMax));
  if (f.NoPers != 0) q.bind(":no", static_cast<int64_t>(f.NoPers));
}

}  // namespace

void TModuleBDD::ApplyFilterEvent(const TStructFilterEvent& filtre, std::vector<long>& evens) {
  evens.clear();
  Protege([&] {
    std::string libelle;
    SQLite::Statement& q = Requete("SELECT \"ID\" FROM \"Evenements\" " + Clause(filtre, &libelle) +
                                   " ORDER BY \"_DATE\", \"ID\"");
    Lie(q, filtre, libelle);
    while (q.executeStep()) evens.push_back(Entier(q, 0));
    q.tryReset();
  });
}

void TModuleBDD::GetFilteredEventPerson(const TStructFilterEvent& filtre, std::set<long>& personnes) {
  personnes.clear();
  Protege([&] {
    std::string libelle;
    SQLite::Statement& q = Requete("SELECT \"NoPersA\", \"NoPersB\" FROM \"Evenements\" " +
                                   Clause(filtre, &libelle));
    Lie(q, filtre, libelle);
    while (q.executeStep())
      for (int c = 0; c < 2; ++c)
        if (Entier(q, c) > 0) personnes.insert(Entier(q, c));
    q.tryReset();
  });
}

void TModuleBDD::FiltreEventByLieuDate(long lieu, long dateMin, long dateMax, std::vector<long>& evens) {
  TStructFilterEvent f;
  f.Lieu = lieu;
  f.DateMin = dateMin;
  f.DateMax = dateMax;
  ApplyFilterEvent(f, evens);
}

void TModuleBDD::GetAllEventWithImages(std::vector<long>& evens) {
  evens.clear();
  Protege([&] {
    SQLite::Statement& q = Requete(
        "SELECT \"ID\" FROM \"Evenements\" WHERE \"Type\" = 0 AND EXISTS (SELECT 1 FROM \"Illustrations\" WHERE "
        "\"Illustrations\".\"ID_EVEN\" = \"Evenements\".\"ID\") ORDER BY \"ID\"");
    while (q.executeStep()) evens.push_back(Entier(q, 0));
    q.tryReset();
  });
}

void TModuleBDD::ListePersonneLieux(long lieu, std::set<long>& personnes) {
  personnes.clear();
  if (lieu == 0) return;
  Protege([&] {
    SQLite::Statement& q = Requete("SELECT \"NoPersA\", \"NoPersB\" FROM \"Evenements\" WHERE \"Lieu\" = ?");
    q.bind(1, static_cast<int64_t>(lieu));
    while (q.executeStep())
      for (int c = 0; c < 2; ++c)
        if (Entier(q, c) > 0) personnes.insert(Entier(q, c));
    q.tryReset();
  });
}

void TModuleBDD::ListePersonneParenteQualite(long qualite, long parente, std::set<long>& personnes) {
  personnes.clear();
  Protege([&] {
    SQLite::Statement& q = Requete(
        "SELECT \"LienPers_No\" FROM \"PersAssociees\" WHERE \"LienPers_No\" > 0 AND \"ID_EVEN\" > 0 AND (?1 = 0 OR "
        "\"LienQualite\" = ?1) AND (?2 = 0 OR \"LienParente\" = ?2)");
    q.bind(1, static_cast<int64_t>(qualite));
    q.bind(2, static_cast<int64_t>(parente));
    while (q.executeStep()) personnes.insert(Entier(q, 0));
    q.tryReset();
  });
}

long TModuleBDD::GetLastPersonEdit() {
  if (!ColonneExiste("Evenements", "DateLastModif")) return 0;
  return Protege([&] {
    SQLite::Statement& q = Requete(
        "SELECT \"NoPersA\" FROM \"Evenements\" WHERE \"DateLastModif\" IS NOT NULL AND \"NoPersA\" > 0 ORDER BY "
        "\"DateLastModif\" DESC, \"ID\" DESC LIMIT 1");
    const long no = q.executeStep() ? Entier(q, 0) : 0;
    q.tryReset();
    return no;
  });
}

std::string TModuleBDD::GetDateLastModif(long no) {
  if (no <= 0 || !ColonneExiste("Evenements", "DateLastModif")) return "";
  return Protege([&] {
    SQLite::Statement& q = Requete(
        "SELECT MAX(\"DateLastModif\") FROM \"Evenements\" WHERE \"NoPersA\" = ?1 OR \"NoPersB\" = ?1");
    q.bind(1, static_cast<int64_t>(no));
    std::string date;
    if (q.executeStep() && !q.getColumn(0).isNull()) date = TexteColonne(q, 0);
    q.tryReset();
    return date;
  });
}

void TModuleBDD::SwapPersAssociees(long a, long b) {
  Protege([&] {
    auto rangDe = [&](long id, long& rang) {
      SQLite::Statement& q = Requete("SELECT \"Rang\" FROM \"PersAssociees\" WHERE \"ID_PERSASSOC\" = ?");
      q.bind(1, static_cast<int64_t>(id));
      const bool existe = q.executeStep();
      if (existe) rang = Entier(q, 0);
      q.tryReset();
      return existe;
    };
    long ra = 0, rb = 0;
    if (!rangDe(a, ra) || !rangDe(b, rb)) return;
    for (auto [id, rang] : {std::pair<long, long>{b, ra}, std::pair<long, long>{a, rb}}) {
      SQLite::Statement& u = Requete("UPDATE \"PersAssociees\" SET \"Rang\" = ? WHERE \"ID_PERSASSOC\" = ?");
      u.bind(1, static_cast<int64_t>(rang));
      u.bind(2, static_cast<int64_t>(id));
      LignesEcrites += PostInTable(u);
    }
  });
}

}  // namespace rqbase
