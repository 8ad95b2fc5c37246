// La commande nom : les clés qu'un nom reçoit pour l'index et la recherche, sans dossier.
//
//   rqbase nom TEXTE
//     clé (NormaliseCle), nom sans particules (PasseParticule), forme d'index (FormatIndex) et
//     soundex de la forme d'index, une ligne chacun ; --json : {"cle", "sans_particules",
//     "index", "soundex"}. Un soundex vide (forme d'index vide ou "H") s'écrit "".
//
// Le texte arrive en UTF-8 ; un caractère que Windows-1252 n'a pas, ou un caractère de
// contrôle, est refusé (code 1) : la clé d'un nom qu'aucun dossier ne peut tenir n'aurait pas
// de sens.
#include "commandes.h"
#include "rqbase/index/bo_chn.h"
#include "rqbase/index/particules.h"
#include "rqbase/index/soundex.h"

namespace rqcli {

namespace {

void Nom(TContexteCli& ctx, const std::string& texte) {
  const std::string nom = ArgTexte(texte, "le nom");
  std::string cle = nom;
  rqbase::NormaliseCle(cle);
  const std::string sansParticules = rqbase::PasseParticule(nom);
  const std::string index = rqbase::FormatIndex(nom);
  char soundex[rqbase::kTailleSoundex];
  rqbase::strSoundex(index.c_str(), soundex);
  if (ctx.Json) {
    EcritJson({{"cle", Texte(cle)}, {"sans_particules", Texte(sansParticules)}, {"index", Texte(index)},
               {"soundex", Texte(soundex)}});
    return;
  }
  Ecrit("Clé : " + cle);
  Ecrit("Sans particules : " + sansParticules);
  Ecrit("Index : " + index);
  Ecrit("Soundex : " + std::string(soundex));
}

}  // namespace

void AjouteCommandesNoms(CLI::App& app, TContexteCli& ctx) {
  static std::string texte;
  auto* nom = app.add_subcommand("nom", U("Les clés d'un nom : clé, nom sans particules, forme d'index, soundex"));
  nom->add_option("TEXTE", texte, U("Le nom ou les prénoms, tels qu'ils sont tapés"))->required();
  nom->callback([&ctx] { Nom(ctx, texte); });
}

}  // namespace rqcli
