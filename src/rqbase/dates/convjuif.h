// ConvJuif : passage entre une date civile et une date hébraïque par le calcul
// des molads, en parties d'heure (1080 à l'heure, 18 à la minute), comme le fait
// un comput rabbinique. Chaque étape est un membre sur des champs partagés.
//
// Les jours de la semaine du comput vont de 1 (dimanche) à 7 (samedi). Les mois
// hébreux sont numérotés de Tichri (1) à Eloul (13) : 6 est Adar I (Adar d'une
// année commune), 7 Adar II, qui n'existe que dans une année de 13 mois.
//
// Les textes sont "jj/mm/aaaa". Une date civile est julienne jusqu'au 9 décembre
// 1582 et grégorienne à partir du 20 décembre 1582. Un objet sert à autant de
// conversions qu'on veut ; une conversion impossible laisse une réponse vide.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace rqbase {

class ConvJuif {
 public:
  ConvJuif();

  // Date civile -> date hébraïque. Voulu : l'année civile 1582 est prise pour 1583.
  // Faux (et réponse vide) pour une date illisible ou hors du calendrier.
  bool convCivil_juif(std::string_view date);
  // Date hébraïque -> date civile. Faux (et réponse vide) pour un jour ou un mois
  // qui n'existe pas cette année-là (30 Hechvan d'une année défective, Adar II
  // d'une année commune...).
  bool convJuif_civil(std::string_view date);
  // La même réponse que convJuif_civil, sans rien de plus : ni la nature de
  // l'année (getDistrib), ni le jour de la semaine (getJour), ni les jours de
  // Roch Hachana et de Nissan. Pour les conversions de texte, qui ne lisent que la réponse.
  bool convJuif_civilReponse(std::string_view date);
  // Le même calcul sur le jour, le mois et l'année déjà lus : ni texte lu ni
  // réponse écrite, le résultat est dans JourCivil, MoisCivil et AnneeCivile.
  bool convJuif_civilNombres(int jour, int mois, int annee);

  void setReponse(std::string texte) { reponse = std::move(texte); }
  void setDistrib(std::string texte) { distrib = std::move(texte); }
  void setJour(std::string texte) { jour = std::move(texte); }
  const std::string& getReponse() const { return reponse; }
  // Nature et durée de l'année hébraïque du résultat : "commune régulière", "embolismique abondante"...
  const std::string& getDistrib() const { return distrib; }
  // Jour de la semaine de la date convertie, en toutes lettres.
  const std::string& getJour() const { return jour; }

  // --- Étapes du comput (publiques pour être vérifiées une à une) ---

  // 12 ou 13 mois selon annee modulo 19 ; fixe nbMois.
  int embolismic(int annee);
  // Parties totales -> parties, minutes, heures, jours, semaines.
  void conversion();
  // Ramène le jour dans 1..7.
  void conversionPartielle();
  // Cycles de 19 ans écoulés, années embolismiques et communes écoulées du cycle courant.
  void cycleLunaire();
  // Molad de Tichri de anneeHeb (jour de semaine, heure, minutes, parties).
  void moladTichri();
  void moladNissan();
  // Avance le jour tant qu'il n'est pas 2, 3, 5 ou 7 ; lève le report.
  void reportRochHachana();
  // Jour de Roch Hachana à partir du molad de Tichri.
  void rochHachana();
  void partRochHachana();
  // Jour de semaine de Roch Hachana de l'année donnée.
  int caractHebPart(int annee);
  // Roch Hachana de cette année et de la suivante, puis le 1er Nissan.
  void caractHeb();
  void rochHodechNissan();
  void tekoufaNissan();
  // Longueur de février et décalage julien-grégorien de l'année civile.
  void bissextile();
  // Ramène au calendrier julien les jours de 1582 avant la réforme.
  void correctJulienGreg();
  void j_sem();
  // Longueur des mois de l'année hébraïque courante selon son type.
  void intervalles();
  bool controleJuif();

  // Valeurs lues par les tests et par les conversions.
  int AnneeHebraique() const { return anneeHeb; }
  int NbMois() const { return nbMois; }
  int JourMolad() const { return jours; }
  int HeureMolad() const { return heures; }
  int MinutesMolad() const { return minutes; }
  int PartiesMolad() const { return parties; }
  int JourRochHachana() const { return jourRH; }
  int JourRochHachanaSuivant() const { return jourRHSuivant; }
  int JourNissan() const { return jourNissan; }
  int LongueurFevrier() const { return fevrier; }
  int DecalageJulien() const { return decalage; }
  int JourCivil() const { return jourCivil; }
  int MoisCivil() const { return moisCivil; }
  int AnneeCivile() const { return anneeCivile; }
  void SetCivil(int jourC, int moisC, int anneeC) {
    jourCivil = jourC;
    moisCivil = moisC;
    anneeCivile = anneeC;
  }
  int LongueurMois(int mois) const { return (mois >= 1 && mois <= 13) ? longueurs[mois] : 0; }
  // Numéro de jour julien chronologique du 1er Tichri de l'année (année >= 1).
  // Gardé par année une fois calculé (sûr entre fils d'exécution).
  static std::int64_t JdnRochHachana(int annee);

 private:
  static std::int64_t CalculeJdnRochHachana(int annee);
  void PoseAnnee(int annee);
  std::string TypeAnnee() const;
  // Contrôle le jour hébreu et place son numéro de jour julien dans jdnResultat.
  bool PlaceJourHebreu(int jour, int mois, int annee);
  bool ResultatCivil(std::int64_t jdn);
  bool CivilDepuisJdn(std::int64_t jdn);  // ResultatCivil sans la réponse

  std::string reponse, distrib, jour;
  int jourCivil = 0, moisCivil = 0, anneeCivile = 0;
  int fevrier = 28;
  int decalage = 0;
  int nbMois = 12;
  int cycles = 0, embolismiques = 0, communes = 0;
  std::int64_t totalParties = 0;
  int parties = 0, minutes = 0, heures = 0, jours = 0;
  std::int64_t semaines = 0;
  int anneeHeb = 0;
  bool report = false;
  int jourRH = 0, jourRHSuivant = 0, jourNissan = 0;
  std::int64_t tekoufa = 0;
  int longueurs[14] = {};
  int jourHeb = 0, moisHeb = 0;
  std::int64_t jdnResultat = 0;
};

}  // namespace rqbase
