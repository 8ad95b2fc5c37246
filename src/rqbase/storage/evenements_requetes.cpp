// TModuleBDD : les requêtes des écrans de recherche sur les événements. Les critères
// absents n'ajoutent rien au texte de la requête ; les valeurs sont toujours liées.
#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
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
    SQLite::Statement& q =
        Requete("SELECT \"ID\" FROM \"Evenements\" " + Clause(filtre, &libelle) + " ORDER BY \"_DATE\", \"ID\"");
    Lie(q, filtre, libelle);
    while (q.executeStep()) evens.push_back(Entier(q, 0));
    q.tryReset();
  });
}

void TModuleBDD::GetFilteredEventPerson(const TStructFilterEvent& filtre, std::set<long>& personnes) {
  personnes.clear();
  Protege([&] {
    std::string libelle;
    SQLite::Statement& q = Requete("SELECT \"NoPersA\", \"NoPersB\" FROM \"Evenements\" " + Clause(filtre, &libelle));
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
    SQLite::Statement& q =
        Requete("SELECT MAX(\"DateLastModif\") FROM \"Evenements\" WHERE \"NoPersA\" = ?1 OR \"NoPersB\" = ?1");
    q.bind(1, static_cast<int64_t>(no));
    std::string date;
    if (q.executeStep() && !q.getColumn(0).isNull()) date = TexteColonne(q, 0);
    q.tryReset();
    return date;
  });
}

void TModuleBDD::GetPersonFavorite(std::vector<long>& personnes) {
  personnes.clear();
  Protege([&] {
    SQLite::Statement& q = Requete(
        "SELECT DISTINCT \"NoPersA\" FROM \"Evenements\" WHERE \"LibelleChamps\" = 'FAVORIS' AND \"Type\" <> 0 AND "
        "\"NoPersA\" > 0 AND TRIM(COALESCE(\"Donnee\", '')) NOT IN ('', '0') ORDER BY \"NoPersA\"");
    while (q.executeStep()) personnes.push_back(Entier(q, 0));
    q.tryReset();
  });
}

void TModuleBDD::ChargerPersDDMF(std::vector<std::pair<long, std::string>>& personnes) {
  personnes.clear();
  Protege([&] {
    SQLite::Statement& q = Requete(
        "SELECT \"NoPersA\", \"Donnee\" FROM \"Evenements\" WHERE \"LibelleChamps\" = 'DDMF' AND \"Type\" <> 0 AND "
        "\"NoPersA\" > 0 ORDER BY \"NoPersA\", \"ID\"");
    while (q.executeStep()) {
      const long no = Entier(q, 0);
      // Une personne n'a qu'une date de modification : la première ligne compte.
      if (personnes.empty() || personnes.back().first != no) personnes.emplace_back(no, Trim(TexteColonne(q, 1)));
    }
    q.tryReset();
  });
  // Le texte "jj/mm/aaaa hh:nn:ss" ne se range pas comme une date : il est converti.
  std::stable_sort(personnes.begin(), personnes.end(),
                   [](const auto& a, const auto& b) { return StrVersDateTime(a.second) > StrVersDateTime(b.second); });
}

void TModuleBDD::ConversionRangCitation(long no) {
  if (no <= 0) return;
  Protege([&] {
    SQLite::Statement& q = Requete(
        "SELECT \"ID_PERSASSOC\", \"Rang\" FROM \"PersAssociees\" WHERE \"LienPers_No\" = ? ORDER BY \"ID_PERSASSOC\"");
    q.bind(1, static_cast<int64_t>(no));
    std::vector<std::pair<long, long>> aChanger;
    long rang = 0;
    while (q.executeStep())
      if (Entier(q, 1) != ++rang) aChanger.emplace_back(Entier(q, 0), rang);
    q.tryReset();
    for (const auto& [id, r] : aChanger) {
      SQLite::Statement& u = Requete("UPDATE \"PersAssociees\" SET \"Rang\" = ? WHERE \"ID_PERSASSOC\" = ?");
      u.bind(1, static_cast<int64_t>(r));
      u.bind(2, static_cast<int64_t>(id));
      LignesEcrites += PostInTable(u);
    }
  });
}

void TModuleBDD::ConversionSetRangCitation(long no, long idEven, long rang) {
  Protege([&] {
    SQLite::Statement& u =
        Requete("UPDATE \"PersAssociees\" SET \"Rang\" = ? WHERE \"LienPers_No\" = ? AND \"ID_EVEN\" = ?");
    u.bind(1, static_cast<int64_t>(rang));
    u.bind(2, static_cast<int64_t>(no));
    u.bind(3, static_cast<int64_t>(idEven));
    LignesEcrites += PostInTable(u);
  });
}

long TModuleBDD::ShiftIDEvent(long delta) {
  Protege([&] {
    std::unique_ptr<SQLite::Transaction> bloc;
    if (!EnImport()) bloc = std::make_unique<SQLite::Transaction>(Base());
    const long maxi = GetIDEventMax();
    if (delta > 0) {
      SQLite::Statement& avance = Requete("UPDATE sqlite_sequence SET seq = seq + ? WHERE name = 'Evenements'");
      avance.bind(1, static_cast<int64_t>(delta));
      PostInTable(avance);
    }
    std::vector<long> anciens;
    {
      SQLite::Statement& q = Requete("SELECT \"ID\" FROM \"Evenements\" WHERE \"ID\" <= ? ORDER BY \"ID\"");
      q.bind(1, static_cast<int64_t>(maxi));
      while (q.executeStep()) anciens.push_back(Entier(q, 0));
      q.tryReset();
    }
    for (long id : anciens) {
      SQLite::Statement& copie = Requete(
          "INSERT INTO \"Evenements\" (\"Type\", \"LibelleChamps\", \"Donnee\", \"NoPersA\", \"NoPersB\", \"Acte\", "
          "\"TypeCalend\", \"Date\", \"Lieu\", \"LieuDit\", \"Note\", \"NoIllustrationParDefaut\", \"LienExtEven\", "
          "\"_DONNEE\", \"_DATE\", \"RANG_A\", \"RANG_B\") SELECT \"Type\", \"LibelleChamps\", \"Donnee\", "
          "\"NoPersA\", "
          "\"NoPersB\", \"Acte\", \"TypeCalend\", \"Date\", \"Lieu\", \"LieuDit\", \"Note\", "
          "\"NoIllustrationParDefaut\", "
          "\"LienExtEven\", \"_DONNEE\", \"_DATE\", \"RANG_A\", \"RANG_B\" FROM \"Evenements\" WHERE \"ID\" = ?");
      copie.bind(1, static_cast<int64_t>(id));
      LignesEcrites += PostInTable(copie);
      const int64_t nouveau = Base().getLastInsertRowid();
      for (const char* sql : {"UPDATE \"Illustrations\" SET \"ID_EVEN\" = ? WHERE \"ID_EVEN\" = ?",
                              "UPDATE \"PersAssociees\" SET \"ID_EVEN\" = ? WHERE \"ID_EVEN\" = ?",
                              "UPDATE \"Sources\" SET \"ID_EVEN\" = ? WHERE \"ID_EVEN\" = ?"}) {
        SQLite::Statement& u = Requete(sql);
        u.bind(1, nouveau);
        u.bind(2, static_cast<int64_t>(id));
        LignesEcrites += PostInTable(u);
      }
      // Voulu : la neutralisation d'origine, « NoPersA = 0 && NoPersB = 0 », ne met à zéro
      // que NoPersA (la valeur d'une comparaison fausse) ; NoPersB reste.
      SQLite::Statement& n =
          Requete("UPDATE \"Evenements\" SET \"NoPersA\" = (0 AND \"NoPersB\" = 0) WHERE \"ID\" = ?");
      n.bind(1, static_cast<int64_t>(id));
      LignesEcrites += PostInTable(n);
    }
    if (bloc) bloc->commit();
  });
  return GetIDEventMax();
}

void TModuleBDD::ResumerTabChpsSimple(std::map<std::string, long>& compte) {
  compte.clear();
  Protege([&] {
    SQLite::Statement& q = Requete(
        "SELECT \"LibelleChamps\", COUNT(*) FROM \"Evenements\" WHERE \"Type\" <> 0 AND \"NoPersA\" >= 0 AND "
        "\"NoPersB\" >= 0 GROUP BY \"LibelleChamps\"");
    while (q.executeStep()) compte[Trim(TexteColonne(q, 0))] += static_cast<long>(q.getColumn(1).getInt64());
    q.tryReset();
  });
}

namespace {

long PremierDe(TModuleBDD& bdd, long no, const std::string& libelle, bool simple) {
  if (no <= 0) return 0;
  return bdd.Protege([&] {
    SQLite::Statement& q =
        bdd.Requete(simple ? "SELECT \"ID\" FROM \"Evenements\" WHERE \"LibelleChamps\" = ?1 AND \"Type\" <> 0 AND "
                             "(\"NoPersA\" = ?2 OR \"NoPersB\" = ?2) ORDER BY \"ID\" LIMIT 1"
                           : "SELECT \"ID\" FROM \"Evenements\" WHERE \"LibelleChamps\" = ?1 AND \"Type\" = 0 AND "
                             "(\"NoPersA\" = ?2 OR \"NoPersB\" = ?2) ORDER BY \"ID\" LIMIT 1");
    TModuleBDD::LieTexte(q, 1, Trim(libelle).substr(0, kLgLibelle));
    q.bind(2, static_cast<int64_t>(no));
    const long id = q.executeStep() ? Entier(q, 0) : 0;
    q.tryReset();
    return id;
  });
}

}  // namespace

long TModuleBDD::FindEvenOfPerson(long no, const std::string& libelle) {
  return PremierDe(*this, no, libelle, false);
}
bool TModuleBDD::EvenExistsForPerson(long no, const std::string& libelle) {
  return FindEvenOfPerson(no, libelle) != 0;
}
long TModuleBDD::FindChpsSimpleOfPerson(long no, const std::string& libelle) {
  return PremierDe(*this, no, libelle, true);
}
bool TModuleBDD::ChpsSimpleExistsForPerson(long no, const std::string& libelle) {
  return FindChpsSimpleOfPerson(no, libelle) != 0;
}

// --- Parcours des sources et des illustrations ---

void TModuleBDD::BeginParcoursSources(long idEven) {
  Protege([&] {
    ParcoursSources = std::make_unique<SQLite::Statement>(
        Base(), idEven == 0 ? "SELECT \"ID_SOURCE\", \"ID_EVEN\", \"TYPE\", \"DESCRIPTIF\" FROM \"Sources\" ORDER BY "
                              "\"ID_SOURCE\""
                            : "SELECT \"ID_SOURCE\", \"ID_EVEN\", \"TYPE\", \"DESCRIPTIF\" FROM \"Sources\" WHERE "
                              "\"ID_EVEN\" = ? ORDER BY \"RANG\", \"ID_SOURCE\"");
    if (idEven != 0) ParcoursSources->bind(1, static_cast<int64_t>(idEven));
  });
}

bool TModuleBDD::GetSourceParcours(TSource* s) {
  s->No = s->NoEven = 0;
  s->Enreg = TSource::TEnreg();
  if (!ParcoursSources) return false;
  return Protege([&] {
    if (!ParcoursSources->executeStep()) return false;
    GetSource(s, *ParcoursSources);
    return true;
  });
}

void TModuleBDD::EndParcoursSources() {
  ParcoursSources.reset();
}

void TModuleBDD::BeginParcoursIllustrations(long idEven) {
  Protege([&] {
    ParcoursIllustrations = std::make_unique<SQLite::Statement>(
        Base(), idEven == 0 ? "SELECT \"ID_ILLUSTRATION\", \"ID_EVEN\", \"CHEMIN\" FROM \"Illustrations\" ORDER BY "
                              "\"ID_ILLUSTRATION\""
                            : "SELECT \"ID_ILLUSTRATION\", \"ID_EVEN\", \"CHEMIN\" FROM \"Illustrations\" WHERE "
                              "\"ID_EVEN\" = ? ORDER BY \"RANG\", \"ID_ILLUSTRATION\"");
    if (idEven != 0) ParcoursIllustrations->bind(1, static_cast<int64_t>(idEven));
  });
}

bool TModuleBDD::GetIllustrationParcours(TIllustration* i) {
  i->No = i->NoEven = 0;
  i->Enreg = TIllustration::TEnreg();
  if (!ParcoursIllustrations) return false;
  return Protege([&] {
    if (!ParcoursIllustrations->executeStep()) return false;
    GetIllustration(i, *ParcoursIllustrations);
    return true;
  });
}

void TModuleBDD::EndParcoursIllustrations() {
  ParcoursIllustrations.reset();
}

bool TModuleBDD::DonneeExiste(const std::string& libelle, const std::string& donnee) {
  return Protege([&] {
    SQLite::Statement& q =
        Requete("SELECT 1 FROM \"Evenements\" WHERE \"LibelleChamps\" = ? AND \"Donnee\" = ? LIMIT 1");
    LieTexte(q, 1, libelle);
    LieTexte(q, 2, donnee);
    const bool existe = q.executeStep();
    q.tryReset();
    return existe;
  });
}

}  // namespace rqbase
