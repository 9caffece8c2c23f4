-- Random numbers for test benches.

library ieee;
use ieee.math_real.all;

package random_numbers is

  -- Each generator gives the same sequence.
  type generator is protected
    -- 0 to limit - 1, evenly distributed.
    impure function below(limit : positive) return natural;
  end protected;

end package;

package body random_numbers is

  type generator is protected body

    variable seed1, seed2 : positive := 1;

    impure function below(limit : positive) return natural is
      variable number : real;
    begin
      uniform(seed1, seed2, number);
      return natural(floor(number * real(limit)));
    end function;

  end protected body;

end package body;
