// TChampBase : les nombres qui disent ce qu'un élément affiché montre (le sous-champ), sous
// quelle forme (le style) et en quelle casse. Ce sont de simples nombres ; des types distincts
// pour le sous-champ et le style, afin qu'une fonction puisse se décliner selon l'un ou l'autre.
#pragma once

namespace rqbase {

struct TChampBase {
  enum class TSousChamps : int {};
  enum class TStyle : int {};
  // 0 capitales, 1 minuscules avec une capitale en tête, 2 tel quel, 3 capitales sans accents.
  using TCasse = int;
};

}  // namespace rqbase
