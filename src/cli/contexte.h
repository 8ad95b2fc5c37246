// Ce que toutes les commandes de rqbase partagent : l'option --json, les
// réponses imposées (--oui/--non), l'écriture des résultats et la conversion
// des textes aux bords (arguments UTF-8 -> Windows-1252, sorties -> UTF-8).
//
// Une commande signale une erreur en levant rqbase::ERqBase avec le texte
// français ; main l'écrit sur stderr et sort avec le code 1.
#pragma once
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "rqbase/platform/progression.h"

namespace rqcli {

using json = nlohmann::json;

struct TContexteCli {
  bool Json = false;
  bool Oui = false;
  bool Non = false;
};

// Texte d'aide ou d'interface écrit dans nos sources (Windows-1252 à l'exécution) -> UTF-8
// pour CLI11 et le terminal : toute chaîne passée à CLI11 passe par là.
std::string U(const std::string& cp1252);
// Argument de la ligne de commande (UTF-8) -> texte interne (Windows-1252).
std::string Arg(const std::string& utf8);
// Un texte à enregistrer dans un dossier (UTF-8 -> Windows-1252), sans rien changer en
// silence : un caractère que le codage des dossiers n'a pas, ou un caractère de contrôle
// (tabulation, saut de ligne, échappement...), est refusé par une ERqBase qui le nomme.
// `quoi` dit de quel texte il s'agit ("le nom", "les prénoms").
std::string ArgTexte(const std::string& utf8, const std::string& quoi);
// Texte interne -> valeur JSON (UTF-8).
json Texte(const std::string& cp1252);
// Écrit une ligne de texte interne sur la sortie standard, en UTF-8.
void Ecrit(const std::string& cp1252);
// Écrit un document JSON, indenté, sur la sortie standard.
void EcritJson(const json& document);

// Un document JSON dont le dernier membre est un long tableau, écrit au fil de l'eau :
// la mémoire ne croît pas avec le nombre d'éléments (un million de personnes).
// { <membres de l'en-tête>, "<cle>": [ élément, élément, ... ] }
// Le texte passe par un tampon vidé par gros blocs sur la sortie standard ; le document est
// fermé et vidé à la destruction, même quand une exception l'interrompt.
class TTableauJsonEnFlux {
 public:
  TTableauJsonEnFlux(const json& entete, const std::string& cle);
  ~TTableauJsonEnFlux();
  void Ajoute(const json& element);

  // Un élément objet écrit membre à membre, sans construire de json (un million
  // d'éléments) : le texte est celui de json::dump() quand les membres sont donnés dans
  // l'ordre de leurs clés, qui est celui où json les écrit. L'objet se ferme à la destruction.
  class TObjet {
   public:
    explicit TObjet(TTableauJsonEnFlux& tableau);
    ~TObjet();
    TObjet(const TObjet&) = delete;
    TObjet& operator=(const TObjet&) = delete;
    // Un texte interne (Windows-1252), écrit en UTF-8 et échappé comme le fait json.
    TObjet& Texte(const char* cle, std::string_view cp1252);
    TObjet& Entier(const char* cle, long valeur);
    TObjet& Booleen(const char* cle, bool valeur);

   private:
    void Cle(const char* cle);
    TTableauJsonEnFlux& Tableau;
    bool PremierMembre = true;
  };

 private:
  void Separe();
  void VideSiPlein();
  std::string Tampon;
  bool Premier = true;
};

// Barre de progression sur stderr (muette quand stderr n'est pas un terminal).
// Ctrl-C lève le drapeau d'abandon de la progression active.
class TProgressionTerminal : public rqbase::TProgression {
 public:
  TProgressionTerminal();
  ~TProgressionTerminal() override;
  void Titre(const std::string& titre) override;
  void Position(long position) override;

 private:
  void Dessine();
  std::string TitreCourant;
  bool Terminal;
  int DernierPourMille = -1;
};

}  // namespace rqcli
