// TDateRQ : la date généalogique, telle qu'un généalogiste l'écrit. Un bloc de
// 15 octets copié, stocké dans les enregistrements et comparé tel quel :
//   octets 0-2   acte : marque de précision ("<", ">", "~", "ca", "?") ou nature du
//                document ("p", "c", "e", "al"), texte terminé par un zéro
//   octet  3     calendrier : 'G' grégorien (zéro, 'F' et blanc valent aussi 'G'),
//                'R' républicain, 'H' hébraïque, 'A' avant Jésus-Christ
//   octets 4-14  texte de la date, terminé par un zéro (au plus 10 caractères)
// Toute l'arithmétique passe par le texte : la date est relue à chaque question.
//
// Certaines questions changent l'objet (RecupAnnee, RecupAnneeFloat,
// ConvVersGregInterne, GetSigneZodiaque, TransformeFourchetteDate,
// CalculDateMoyenneFourchette) : les appelants travaillent sur des copies.
// Aucune opération ne lève d'exception ; une valeur incalculable vaut 1000000
// (entier) ou 1000000.0 (flottant), une année illisible 0.
//
// L'ordre des dates (CompareDate) est dans ordre_dates.h, le décompte des jours
// (CalcJours et ses dérivés) dans decompte_jours.h ; bo_jours.h réunit les trois.
#pragma once
#include <string>
#include <string_view>

namespace rqbase {

inline constexpr int kIncalculable = 1000000;
inline constexpr float kIncalculableF = 1000000.0f;

// Intervalle d'années fractionnaires à bornes éventuellement ouvertes.
template <typename T>
struct TInterval {
  T Inf = 0;
  bool InfOuvert = true;
  T Sup = 0;
  bool SupOuvert = true;

  void SetInf(T v) { Inf = v; InfOuvert = false; }
  void SetInfOuvert() { Inf = 0; InfOuvert = true; }
  void SetSup(T v) { Sup = v; SupOuvert = false; }
  void SetSupOuvert() { Sup = 0; SupOuvert = true; }
  bool IsInfini() const { return InfOuvert || SupOuvert; }
  T Largeur() const { return IsInfini() ? T(1000000.0) : Sup - Inf; }
  T Milieu() const { return IsInfini() ? T(1000000.0) : (Inf + Sup) * T(0.5); }
  // Ajoute `moins` à une borne inférieure fermée et `plus` à une borne supérieure fermée.
  void Gonfle(T plus, T moins) {
    if (!InfOuvert) Inf += moins;
    if (!SupOuvert) Sup += plus;
  }
};

// Mots de précision réunis selon les bits (1 avant, 2 après, 32 vers, 16 le,
// 4 et, 8 en, 64 entre), suivis d'un blanc. Seul le bit 16 s'ajoute ; les autres
// remplacent ce qui précède.
std::string PreciseDate(int bits);

class TDateRQ {
 public:
  TDateRQ();
  // Copie l'acte, remplace le calendrier '?' par 'G', recopie le texte sans blancs de fin.
  TDateRQ(const TDateRQ& autre);
  TDateRQ(char calendrier, std::string_view date);
  // Calendrier 'G', date = debut + l'année sur 4 chiffres : (1850, "01/01/") -> "01/01/1850".
  TDateRQ(int annee, std::string_view debut);
  // La forme exportée "#aaCdate#" quand le texte fait exactement 15 caractères ;
  // sinon un texte libre lu par AnalyseDate (souple) dans le calendrier 'R' s'il
  // en a la forme, 'G' sinon. Une fourchette exportée (14 ou 10 caractères) est
  // donc relue comme texte libre.
  explicit TDateRQ(std::string_view texte);
  TDateRQ& operator=(const TDateRQ& autre);

  // --- Accès ---
  void SetDate(std::string_view date);  // les 10 premiers caractères
  std::string GetDate() const;          // sans blancs de fin
  std::string GetActe() const;
  void SetActe(std::string_view acte);  // les 2 premiers caractères
  char GetCalendrier() const { return Calendrier; }
  void SetCalendrier(char calendrier) { Calendrier = calendrier; }
  std::string ExportInString() const;

  // --- Formes ---
  bool DateFormatGregorien() const;  // 'G', zéro, 'F' ou blanc
  bool DateFormatRepublicain() const { return Calendrier == 'R'; }
  bool DateFormatHebraique() const { return Calendrier == 'H'; }
  bool DateFormatAvantJC() const { return Calendrier == 'A'; }
  bool DateFormatFourchette() const;  // un blanc de fin retiré
  bool DateFormatFourchetteAVC4chiffre() const;

  // --- Acte ---
  bool ActeVide() const;
  bool IsActeInferieur() const;
  bool IsActeSuperieur() const;
  bool IsActeImprecis() const;
  bool NotActePrecisionDate() const;

  // --- Vide, possible, précise ---
  bool DateVide0() const;
  bool DateVide() const;
  bool Vide() const;
  bool AnneeDateVide(std::string* annee = nullptr) const;
  bool CalculDatePossible() const;
  bool DateNiPreciseNiFourchette(std::string_view s) const;
  bool DateIncomplete(std::string* court, std::string* nom, bool espace) const;
  bool IsDatePrecise(int* annee, int* mois, int* jour, std::string_view s, bool surChaine) const;

  // --- Années ---
  void RecupAnneeFourchette(bool conv, std::string* min, std::string* max, int* iMin, int* iMax, int* iMoyen) const;
  std::string RecupAnneeFourchetteEstim(bool conv, int* pMin, int* pMax, int* pDefaut, int* pMoyen, bool estime) const;
  std::string RecupAnneeChn(bool conv, int* pMin = nullptr, int* pMax = nullptr, int* pDefaut = nullptr,
                            int* pMoyen = nullptr, bool estime = false) const;
  // Change l'objet (AjusteDateFourchette) avant de lire l'année.
  int RecupAnnee(bool conv, int* pMin = nullptr, int* pMax = nullptr, int* pDefaut = nullptr, int* pMoyen = nullptr,
                 bool estime = false);
  // Change l'objet (AjusteDateFourchette). 1000000.0 pour une fourchette ou une année nulle.
  float RecupAnneeFloat(bool conv, int* pMin = nullptr, int* pMax = nullptr, bool* pFourchette = nullptr);
  std::string ConstruitActeAnneeChn(int annee, bool& vide, bool inferieur) const;
  void CalculAnneeFloatOuFourchette(float& annee, TInterval<float>& intervalle) const;

  // --- Fourchettes ---
  void AjusteDateFourchette();
  void TransformeFourchetteDate();
  bool CalculDateMoyenneFourchette(bool conv);
  TDateRQ GetDateLimiteFourchette(bool maxi) const;
  bool DateDansFourchette(std::string_view min, std::string_view max) const;
  // Par décomptes absolus des jours (decompte_jours.cpp) : 1 sans décompte pour cette
  // date, -1 sans décompte pour une borne, -1 avant `min`, 1 après `max`, 0 dedans.
  int DateIn(const TDateRQ& min, const TDateRQ& max) const;
  void AjusteFourchette(short& min, short& max, bool fourchette) const;
  void AjusteFourchette(float& min, float& max, bool fourchette) const;
  bool LimiteAnneeMin(int annee) const;

  // --- Parties ---
  void ExtractJourMoisAnnee(int& jour, int& mois, int& annee, bool minimum) const;
  void ExtractJourMoisAnneeGregorien(int& jour, int& mois, int& annee, bool minimum);
  static void ModifMinMaxJourMoisAnnee(int& jour, int& mois, bool minimum);
  void SetJourMoisAnnee(int jour, int mois, int annee);
  std::string RetAnneeMoisJour() const;
  std::string ConvVersGreg() const;
  void ConvVersGregInterne();

  // --- Arithmétique ---
  bool Decalage(int n);
  // Jours entre la date de référence et celle-ci (négatif avant la référence) ; 1000000
  // sinon. Défini avec le décompte des jours (decompte_jours.cpp), comme DateIn.
  int CalcNbJoursAbs(bool exact, std::string_view reference = "01/01/0001") const;

  // --- Ordre (ordre_dates.h, défini dans ordre_dates.cpp) ---
  // Les deux dates sont lues comme des copies (voir le constructeur de copie) : rien ne change.
  static int CompareDate(const TDateRQ& d1, const TDateRQ& d2, int defaut);
  bool operator<(const TDateRQ& autre) const;

  // --- Mots ---
  static std::string PrefixeActe(std::string_view acte, bool annee, bool avecActe);
  std::string RedigeFourchette() const;
  std::string RedigeAnnee(bool avecActe) const;
  std::string PlaceJour(bool espace) const;
  std::string FormatDateTilde() const;
  int RetourneJourSemaine(std::string& abrege, std::string& complet, short* numero, bool espace) const;
  int GetSigneZodiaque();
  int GetSaison(std::string* texte) const;
  static std::string DeterminerPositionFinDeSaison(int jour);
  static std::string DeterminerPositionDebutDeSaison(int jour);

  // Les 15 octets tels quels.
  bool MemesOctets(const TDateRQ& autre) const;

 private:
  std::string TexteBrut() const;  // jusqu'au premier zéro
  std::string ActeNormalise() const;  // sans blancs, en majuscules
  std::string TexteAnnee() const;     // positions 9-10 en 'R', 7-10 sinon

  // Ce que CompareDate lit d'une date, calculé sans rien construire (voir ordre_dates.cpp).
  struct TCleOrdre;
  static void CleOrdre(const TDateRQ& d, TCleOrdre& cle);

  char Acte[3];
  char Calendrier;
  char Date[11];
};

static_assert(sizeof(TDateRQ) == 15, "TDateRQ tient en 15 octets dans les enregistrements");

// Élargit la date en "aaaa/bbbb" pour y inclure l'année du texte `date`.
void MajFourchetteAnnee(TDateRQ& fourchette, std::string_view date);

}  // namespace rqbase
