// SPDX-License-Identifier: BSD-3-Clause
// Light or dark: the system's choice, until the reader makes another. Runs before anything is painted.
'use strict';

(() => {
  const root = document.documentElement;
  const system = matchMedia('(prefers-color-scheme: dark)');
  const isDark = () => (root.dataset.theme ?? (system.matches ? 'dark' : 'light')) === 'dark';

  // A browser may refuse to remember anything for pages from a disk; the switch works all the same.
  const remember = theme => {
    try {
      if (theme) localStorage.setItem('vhl-theme', theme);
      else localStorage.removeItem('vhl-theme');
    } catch { /* not remembered */ }
  };
  try {
    const remembered = localStorage.getItem('vhl-theme');
    if (remembered) root.dataset.theme = remembered;
  } catch { /* nothing remembered */ }

  addEventListener('DOMContentLoaded', () => {
    const button = document.getElementById('theme');
    const show = () => button.setAttribute('aria-pressed', isDark());
    button.addEventListener('click', () => {
      const theme = isDark() ? 'light' : 'dark';
      const isSystems = (theme === 'dark') === system.matches;
      if (isSystems) delete root.dataset.theme;
      else root.dataset.theme = theme;
      remember(isSystems ? null : theme);
      show();
    });
    system.addEventListener('change', show);
    button.hidden = false;
    show();
  });
})();
