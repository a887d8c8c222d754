// SPDX-License-Identifier: BSD-3-Clause
// Buttons that copy the text below them, or the whole scene, and the list of groups where the reader is.
'use strict';

(() => {
  // Where a browser keeps the clipboard from pages on a disk, the old way through the selection is open.
  const copySelected = element => {
    element.closest('details')?.setAttribute('open', ''); // what is folded cannot be selected
    getSelection().selectAllChildren(element);
    return document.execCommand('copy') ? Promise.resolve() : Promise.reject();
  };
  const copy = element =>
    (navigator.clipboard?.writeText(element.textContent) ?? Promise.reject())
      .catch(() => copySelected(element));

  for (const button of document.querySelectorAll('.copyable button')) {
    const say = text => {
      button.textContent = text;
      setTimeout(() => { button.textContent = 'Copy'; }, 2000);
    };
    button.setAttribute('aria-live', 'polite');
    const code =
      document.getElementById(button.dataset.copied) ?? button.closest('.copyable').querySelector('code');
    button.addEventListener('click', () => copy(code).then(() => say('Copied'), () => say('Not copied')));
    button.hidden = false;
  }

  const groups = document.getElementById('groups');
  const current = groups.querySelector('[aria-current]');
  if (current && current.offsetTop + current.offsetHeight > groups.clientHeight)
    groups.scrollTop = current.offsetTop - groups.clientHeight / 2;
})();
