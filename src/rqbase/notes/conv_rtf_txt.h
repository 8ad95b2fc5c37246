// TConvRtfTxt : le petit décapeur qui tire le texte brut d'une note RTF.
//
// Il ne comprend que quatorze mots de commande (liste ci-dessous, dans cet ordre) et ôte
// tout le reste, par suppression, de la fin du texte vers son début : les positions déjà
// traitées ne bougent jamais. Ses manies sont voulues et font partie du contrat :
//  - un mot de commande se reconnaît à son début (« pard » avant « par », et tout mot qui
//    commence par « par » compte pour « par ») ;
//  - un point ou une parenthèse collés à un mot de commande partent avec lui ;
//  - un bloc (fonttbl, info, pict...) part en entier avec ses groupes ; un bloc qui court
//    jusqu'à la fin du texte ne perd que son mot de commande ;
//  - le premier caractère du texte et le dernier ne sont jamais lus comme une commande.
//
// Positions : les méthodes publiques prennent des positions comptées à partir de 1 (la
// place d'une barre oblique inverse dans le texte de travail). Une position hors du texte
// ne fait rien. Aucune entrée ne plante ni ne boucle : le travail est linéaire en la
// longueur du texte, blocs énormes et accolades déséquilibrées compris.
#pragma once
#include <string>

#include "rqbase/util/liste_chaines.h"

namespace rqbase {

class TConvRtfTxt {
 public:
  explicit TConvRtfTxt(const std::string& texte);

  // Le texte brut ; sans `sautsDeLigne`, tout vient sur une ligne. Le texte de travail
  // devient ce résultat.
  std::string TraitementRtfTxt(bool sautsDeLigne);

  // Le rang (à partir de 1) du premier mot connu dont les 10 caractères qui suivent la
  // barre en `position` commencent par lui ; -1 sinon.
  int EstCommandeConnue(int position) const;
  // Ôte le mot de commande qui commence à la barre en `position`.
  void SupprimeCmde(int position);
  // Ôte un bloc entre accolades depuis la barre en `position` ; rend la position de
  // l'accolade fermante, ou 0 quand le bloc court jusqu'à la fin (seul le mot part alors).
  int SupprimeBlocCmde(int position);
  // Vrai sur `\`, `{`, un blanc ou `}`.
  bool CaracFinCmde(int position) const;
  // Le mot de commande qui commence en `position` (après la barre) ; "{ ou }" sur une
  // accolade non échappée ; vide ailleurs ou hors du texte.
  std::string ExtraireCommande(int position) const;

  const std::string& Texte() const { return Travail; }
  const TStringList& Commandes() const { return Connues; }

 private:
  TStringList Connues;
  std::string Travail;
};

// L'instance de l'unité, faite au démarrage et détruite à la fin (texte de travail vide).
TConvRtfTxt& ConvRtfTxt();

}  // namespace rqbase
