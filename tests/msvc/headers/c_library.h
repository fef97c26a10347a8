// What libc++ expects of the C library and Wine's headers lack. Declarations only: nothing that is
// compiled with them is linked or run.
#pragma once

#ifdef __cplusplus

#include <stddef.h>
#include <time.h>
#include <wchar.h>

struct timespec {
  long long tv_sec;
  long tv_nsec;
};

extern "C" {

long double acosl(long double);
long double asinl(long double);
long double atanl(long double);
long double ceill(long double);
long double cosl(long double);
long double coshl(long double);
long double expl(long double);
long double fabsl(long double);
long double floorl(long double);
long double logl(long double);
long double log10l(long double);
long double sinl(long double);
long double sinhl(long double);
long double sqrtl(long double);
long double tanl(long double);
long double tanhl(long double);
long double acoshl(long double);
long double asinhl(long double);
long double atanhl(long double);
long double cbrtl(long double);
long double erfl(long double);
long double erfcl(long double);
long double exp2l(long double);
long double expm1l(long double);
long double lgammal(long double);
long double log1pl(long double);
long double log2l(long double);
long double logbl(long double);
long double nearbyintl(long double);
long double tgammal(long double);
long double rintl(long double);
long double roundl(long double);
long double truncl(long double);
long double atan2l(long double, long double);
long double fmodl(long double, long double);
long double powl(long double, long double);
long double fdiml(long double, long double);
long double fmaxl(long double, long double);
long double fminl(long double, long double);
long double hypotl(long double, long double);
long double nextafterl(long double, long double);
long double nexttowardl(long double, long double);
long double remainderl(long double, long double);
long double copysignl(long double, long double);
float erfcf(float);
float nexttowardf(float, long double);
long double frexpl(long double, int*);
long double ldexpl(long double, int);
long double modfl(long double, long double*);
long double fmal(long double, long double, long double);
long double remquol(long double, long double, int*);
long double scalblnl(long double, long);
long double scalbnl(long double, int);
int ilogbl(long double);
long long llrintl(long double);
long long llroundl(long double);
long lrintl(long double);
long lroundl(long double);

#define MB_CUR_MAX 2
float _strtof_l(const char*, char**, _locale_t);
double _strtod_l(const char*, char**, _locale_t);
int _islower_l(int, _locale_t);
int _isupper_l(int, _locale_t);

}  // extern "C"

#endif
