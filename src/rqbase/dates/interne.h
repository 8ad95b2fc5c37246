// Aides internes du sous-système des dates : lecture tolérante des nombres,
// découpe par position, numéros de jour julien chronologiques. Aucune n'est
// exportée hors de src/rqbase/dates.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace rqbase::dates_interne {

// Lecture d'un entier comme le fait tout le sous-système : au plus 20 caractères
// depuis `debut`, arrêt au premier point décimal, seuls les chiffres et le signe
// moins restent ; un reste illisible (vide, "1-2", dépassement) vaut 0.
int ToIntInString(std::string_view texte, std::size_t debut = 0);

// Sous-chaîne par position comptée à partir de 1, tronquée au texte.
std::string Milieu(std::string_view texte, std::size_t position, std::size_t longueur);

// Blancs de fin retirés (les blancs de tête restent).
std::string SansBlancsFin(std::string_view texte);

// Entier écrit sur au moins `largeur` chiffres, complété de zéros ("%0*d").
std::string Zeros(int valeur, int largeur);

// Non vide et rien que des points : une partie inconnue.
bool QueDesPoints(std::string_view texte);

// Fourchette républicaine "aa/bb" -> "aaaa/bbbb" grégorienne, borne par borne par
// ConvAnneeRepubGreg ; une borne en points (ou nulle) reste "....".
std::string FourchetteRepublicaineEnGregorien(std::string_view date);

// Texte en majuscules sans accents (Windows-1252), pour comparer des noms de mois.
std::string Replie(std::string_view texte);

// Numéro (1 à 13) d'un code de mois républicain, casse et accents indifférents ;
// 0 pour un texte qui n'est pas un code. Sans rien construire : la conversion
// républicaine passe par là à chaque date.
int NumeroMoisRepublicain(std::string_view code);

// Jours républicains depuis le 1er vendémiaire an I (CalculNbJours sur des nombres),
// et leur date grégorienne par les tables des années et des mois (n >= 0).
int NbJoursRepublicains(int jour, int mois, int annee);
void GregorienDepuisJoursRepublicains(int n, int& jour, int& mois, int& annee);

// Numéro de jour julien chronologique (entier, midi) d'une date du calendrier
// julien ou du calendrier grégorien proleptique, et l'inverse.
std::int64_t JdnJulien(std::int64_t annee, int mois, int jour);
std::int64_t JdnGregorien(std::int64_t annee, int mois, int jour);
void DepuisJdnJulien(std::int64_t jdn, std::int64_t& annee, int& mois, int& jour);
void DepuisJdnGregorien(std::int64_t jdn, std::int64_t& annee, int& mois, int& jour);

// Division entière arrondie vers moins l'infini.
constexpr std::int64_t DivBas(std::int64_t a, std::int64_t b) {
  return (a >= 0) ? a / b : -((-a + b - 1) / b);
}

}  // namespace rqbase::dates_interne
