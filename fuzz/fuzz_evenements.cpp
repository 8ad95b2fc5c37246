// Des lignes d'événements quelconques, écrites dans la base comme un autre outil pourrait
// les écrire (textes trop longs, octets de contrôle, numéros négatifs ou énormes, calendriers
// et dates sans forme, rangs en désordre, sources et personnes citées d'événements
// inexistants), puis lues, enregistrées, cachées et rendues par la bibliothèque : jamais de
// plantage ; seule ERqBase, le message de restructuration, peut sortir.
//
// Tout se passe dans une base en mémoire (ChargeImage d'une image vide).
#include <SQLiteCpp/SQLiteCpp.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "rqbase/person/gest_pers.h"
#include "rqbase/person/liste_evenements.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/util/erreur.h"

namespace {

struct TLecteur {
  const uint8_t* P;
  size_t Reste;
  uint8_t Octet() {
    if (Reste == 0) return 0;
    --Reste;
    return *P++;
  }
  int32_t Entier() {
    // Souvent petit (personnes 1 à 5, lieux voisins du compte), parfois n'importe quoi.
    const uint8_t genre = Octet();
    if (genre < 200) return static_cast<int8_t>(Octet()) % 8;
    uint32_t v = 0;
    for (int i = 0; i < 4; ++i) v = v << 8 | Octet();
    return static_cast<int32_t>(v);
  }
  std::string Texte(size_t maxi) {
    const size_t n = std::min<size_t>(Octet() % (maxi + 1), Reste);
    std::string t(reinterpret_cast<const char*>(P), n);
    P += n;
    Reste -= n;
    return t;
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  using namespace rqbase;
  static const bool journalMuet = ::setenv("XDG_DATA_HOME", "/dev/null", 1) == 0;
  (void)journalMuet;
  static TDialogueFixe boite;
  InstalleDialogue(&boite);
  TLecteur l{donnees, taille};
  try {
    TModuleBDD bdd("F.adb", "5.90", TAccesDossier::Modifiable);
    const char vide = 0;
    if (!bdd.ChargeImage(&vide, 0)) return 0;
    bdd.CreateDataBase();
    if (!bdd.OpenDataBase()) return 0;
    bdd.NbLieux = [] { return 6L; };
    bdd.NbNotes = [] { return 3L; };
    SQLite::Statement ev(bdd.Base(),
                         "INSERT INTO Evenements (Type, LibelleChamps, Donnee, NoPersA, NoPersB, Acte, TypeCalend, "
                         "\"Date\", Lieu, LieuDit, Note, NoIllustrationParDefaut, _DONNEE, _DATE, RANG_A, RANG_B) "
                         "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    SQLite::Statement liste(bdd.Base(), "INSERT INTO Sources (ID_EVEN, TYPE, DESCRIPTIF, RANG) VALUES (?, ?, ?, ?)");
    SQLite::Statement cite(bdd.Base(),
                           "INSERT INTO PersAssociees (ID_EVEN, LienQualite, LienParente, LienPers_No, "
                           "LienPers_NivNo, Rang) VALUES (?, ?, ?, ?, ?, ?)");
    for (int ligne = 0; ligne < 40 && l.Reste > 0; ++ligne) {
      const uint8_t genre = l.Octet();
      if (genre % 4 == 0) {
        liste.bind(1, l.Entier());
        liste.bind(2, l.Texte(40));
        liste.bind(3, l.Texte(320));
        liste.bind(4, l.Entier());
        liste.exec();
        liste.reset();
        continue;
      }
      if (genre % 4 == 1) {
        for (int c = 1; c <= 4; ++c) cite.bind(c, l.Entier());
        cite.bind(5, l.Texte(3));
        cite.bind(6, l.Entier());
        cite.exec();
        cite.reset();
        continue;
      }
      ev.bind(1, l.Octet() % 3);
      ev.bind(2, l.Texte(30));
      ev.bind(3, l.Texte(130));
      ev.bind(4, l.Entier());
      ev.bind(5, l.Entier());
      ev.bind(6, l.Texte(5));
      ev.bind(7, l.Texte(2));
      ev.bind(8, l.Texte(22));
      ev.bind(9, l.Entier());
      ev.bind(10, l.Texte(60));
      ev.bind(11, l.Entier());
      ev.bind(12, l.Entier());
      ev.bind(13, l.Texte(25));
      ev.bind(14, l.Entier());
      ev.bind(15, l.Entier());
      ev.bind(16, l.Entier());
      ev.exec();
      ev.reset();
    }
    for (long no = 1; no <= 5; ++no) {
      TPerson p(static_cast<TFicPersons*>(nullptr));
      p.NouvelleFiche(no);
      TListesChps listes;
      ChargerLienChpsOfPerson(bdd, p, listes, no == 3 ? 1900 : 0);
      for (TEvenementTV& e : *listes.Evens) {
        bdd.ChargerSourceOfEven(&e.Enreg);
        bdd.ChargerIllustrationOfEven(&e.Enreg);
        bdd.ChargerPersAssocieeOfEven(&e.Enreg);
        if (e.Enreg.CountSource() > 1) std::swap(e.Enreg.Sources[0], e.Enreg.Sources[1]);
        e.Enreg.SupprPersAssociee(0);
      }
      if (no != 3) {
        EnregistrerChpsOfPerson(bdd, p, listes);
        EnregistrerChpsOfPerson(bdd, p, listes);
      }
      std::vector<long> citations;
      bdd.ChargerCitationsDePersonne(no, citations);
      bdd.EnregistreOrdreCitations(no, citations);
    }
    bdd.MasquerChpsOfPerson(2, false);
    bdd.MasquerChpsOfPerson(2, true);
    std::set<long> negatifs;
    bdd.GetListIdPersNegatif(negatifs);
    bdd.BeginParcoursEvens();
    TEvenement e(&bdd);
    while (bdd.GetEvenParcours(&e)) TModuleBDD::ConvDateEnDateIndex(e.Enreg.Date);
    bdd.EndParcoursEvens();
    bdd.ChpsSimpleEven("PROFESSION");
  } catch (const ERqBase&) {
    // Attendu pour une base refusée : le message à l'utilisateur.
  }
  return 0;
}
