// Relecture d'un fichier d'index des noms (.prx) depuis des octets quelconques : jamais de
// plantage, jamais d'allocation sans borne, jamais de boucle ; une table relue se lit, se
// cherche et reçoit une ligne de plus sans faute.
//
// Le premier octet choisit : bit 0 levé, le contrôle des octets est recalculé sur le reste
// (sans quoi presque toute entrée s'arrêterait au contrôle et le lecteur des comptes ne serait
// jamais atteint) ; bit 1 levé, les critères de recherche viennent de la fin de l'entrée.
#include <cstdint>
#include <string>

#include "rqbase/index/index_personnes.h"
#include "rqbase/index/recherche_index.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  using namespace rqbase;
  if (taille < 1) return 0;
  const uint8_t choix = donnees[0];
  std::string octets(reinterpret_cast<const char*>(donnees + 1), taille - 1);
  if (choix & 1) TFicIndexPerson::AjouteControle(octets);
  TGestEltIndex table;
  TFicIndexPerson::TControle controle;
  if (!TFicIndexPerson::LitFormeFichier(octets, table, controle)) {
    if (table.GetNbElt() != 0) __builtin_trap();  // un refus laisse une table vide
    return 0;
  }
  TEltIndex e, t;
  for (long i = 0; i < table.GetNbElt(); ++i) table.Lit(i, e);
  TGestEltIndex::TRechSimple rs;
  rs.Nom = "*";
  if (choix & 2) {
    const size_t n = std::min<size_t>(taille - 1, 24);
    const std::string fin(reinterpret_cast<const char*>(donnees) + taille - n, n);
    rs.Nom = fin.substr(0, n / 2);
    rs.Prenoms = fin.substr(n / 2);
    rs.SoundexNom = (choix & 4) != 0;
  }
  std::vector<long> numeros;
  table.RechercheSimple(rs, nullptr, &numeros);
  std::vector<std::string> liste;
  table.RetournePatronyme(liste);
  TEnregIndex neuf;
  neuf.SetNom("NOUVEAU");
  neuf.NoPers = 1;
  table.AjouteClasse(TEltIndex(neuf, 1), t);
  if (table.GetNbElt() < 5000) table.Classement(e, t);
  // Ce qui a été relu se réécrit et se relit à l'identique.
  const std::string reecrit = TFicIndexPerson::FormeFichier(table, controle);
  TGestEltIndex relue;
  TFicIndexPerson::TControle c2;
  if (!TFicIndexPerson::LitFormeFichier(reecrit, relue, c2) || relue.GetNbElt() != table.GetNbElt()) __builtin_trap();
  return 0;
}
