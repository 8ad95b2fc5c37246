// ConvertirRtfTxt : le texte brut d'une note RTF, par notre propre lecteur RTF.
//
// Le lecteur donne les mots que montrerait un traitement de texte : le texte des
// paragraphes, les caractères échappés (\'hh en Windows-1252, \uN ramené au codage des
// dossiers ou « ? », avec ses caractères de repli sautés), les tabulations ; il ôte les
// groupes qui ne s'affichent pas (tables des polices, des couleurs et des styles,
// informations, images, en-têtes et pieds de page, destinations \*, instructions de
// champs). Chaque fin de paragraphe (\par, \line, \page, \sect, \row) devient une fin de
// ligne CR LF ; sans `sautsDeLigne`, un blanc. Le résultat est rogné aux deux bouts.
//
// Un texte qui ne commence pas par « {\rtf » est du texte ordinaire : il revient rogné,
// ses fins de ligne en CR LF (un blanc sans `sautsDeLigne`).
//
// Aucune entrée ne plante ni ne boucle : accolades déséquilibrées, groupes imbriqués sans
// fin, échappements coupés au bout du texte, \bin qui annonce plus que le texte n'en tient.
// Le travail est linéaire en la longueur du texte.
#pragma once
#include <string>

namespace rqbase {

std::string ConvertirRtfTxt(const std::string& texte, bool sautsDeLigne = true);

}  // namespace rqbase
