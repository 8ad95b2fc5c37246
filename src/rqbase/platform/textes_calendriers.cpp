// Textes numérotés : calendriers. Les rangées de mois se lisent par colonnes
// (positions comptées à partir de 1) ; la largeur de chaque colonne est fixe.
#include "rqbase/platform/ressources.h"

namespace rqbase {
namespace {

constexpr TTexteRessource kTextes[] = {
    // Mois républicains : numéro (1-2), code (4-7), nom (9-23), mois grégorien où il commence (25-26).
    {1808, "01 VEND Vendémiaire     09"},
    {1809, "02 BRUM Brumaire        10"},
    {1810, "03 FRIM Frimaire        11"},
    {1811, "04 NIVO Nivôse          12"},
    {1812, "05 PLUV Pluviôse        01"},
    {1813, "06 VENT Ventôse         02"},
    {1814, "07 GERM Germinal        03"},
    {1815, "08 FLOR Floréal         04"},
    {1816, "09 PRAI Prairial        05"},
    {1817, "10 MESS Messidor        06"},
    {1818, "11 THER Thermidor       07"},
    {1819, "12 FRUC Fructidor       08"},
    {1820, "13 COMP Complémentaires 09"},
    // Mois grégoriens : numéro, forme courte (4-7), nom (9-17), seconde forme courte (19-21),
    // second nom (23-31) : les abréviations des anciens registres pour septembre à décembre.
    {1824, "01 Jan  Janvier   Jan Janvier  "},
    {1825, "02 Fév  Février   Fév Février  "},
    {1826, "03 Mars Mars      Mar Mars     "},
    {1827, "04 Avr  Avril     Avr Avril    "},
    {1828, "05 Mai  Mai       Mai Mai      "},
    {1829, "06 Juin Juin      Jun Juin     "},
    {1830, "07 Juil Juillet   Jul Juillet  "},
    {1831, "08 Août Août      Aoû Août     "},
    {1832, "09 Sept Septembre Sep 7bre     "},
    {1833, "10 Oct  Octobre   Oct 8bre     "},
    {1834, "11 Nov  Novembre  Nov 9bre     "},
    {1835, "12 Déc  Décembre  Déc Xbre     "},
    // Jours de la semaine, dimanche d'abord : abrégé (1-3), nom (5 et suite).
    {1840, "Dim Dimanche"},
    {1841, "Lun Lundi"},
    {1842, "Mar Mardi"},
    {1843, "Mer Mercredi"},
    {1844, "Jeu Jeudi"},
    {1845, "Ven Vendredi"},
    {1846, "Sam Samedi"},
    // Mots de précision des dates (bits 1, 2, 16, 4, 8, 32, 64 de PreciseDate).
    {1857, "avant"},
    {1858, "après"},
    {1859, "le"},
    {1860, " et"},
    {1861, "en"},
    {1862, "vers"},
    {1863, "entre"},
    // Compte des années (CreerChnAn) : %i reçoit le nombre.
    {1920, "%i an"},
    {1921, "%i ans"},
    // Mois hébraïques : même disposition que les mois grégoriens.
    {3760, "01 Tich Tichri    Tic Tichri   "},
    {3761, "02 Hech Hechvan   Hec Hechvan  "},
    {3762, "03 Kisl Kislev    Kis Kislev   "},
    {3763, "04 Tev  Tevet     Tev Tevet    "},
    {3764, "05 Chev Chevat    Che Chevat   "},
    {3765, "06 AdI  Adar I    Ad1 Adar I   "},
    {3766, "07 AdII Adar II   Ad2 Adar II  "},
    {3767, "08 Niss Nissan    Nis Nissan   "},
    {3768, "09 Iyar Iyar      Iya Iyar     "},
    {3769, "10 Siv  Sivan     Siv Sivan    "},
    {3770, "11 Tam  Tamouz    Tam Tamouz   "},
    {3771, "12 Av   Av        Av  Av       "},
    {3772, "13 Elou Eloul     Elo Eloul    "},
    // Types d'année hébraïque (durée) et nature de l'année (12 ou 13 mois).
    {3773, "défective"},
    {3774, "régulière"},
    {3775, "abondante"},
    {3776, "commune"},
    {3778, "embolismique"},
    // Signes du zodiaque, dans l'ordre de GetSigneZodiaque.
    {6150, "Bélier"},
    {6151, "Taureau"},
    {6152, "Gémeaux"},
    {6153, "Cancer"},
    {6154, "Lion"},
    {6155, "Vierge"},
    {6156, "Balance"},
    {6157, "Scorpion"},
    {6158, "Sagittaire"},
    {6159, "Capricorne"},
    {6160, "Verseau"},
    {6161, "Poissons"},
};

}  // namespace

std::span<const TTexteRessource> TextesCalendriers() { return kTextes; }

}  // namespace rqbase
