// SPDX-License-Identifier: BSD-3-Clause
// Reads declarations/vhl.mi and declarations/recipes.mi, by its own rules.
import { readFileSync } from 'node:fs';

const item = /^\s*(array )?([a-z ]+?) +"(\w+)"(?: +default ([^#]*?))?,?\s*(?:#:(.*))?$/;

const range = (type, hints = '') => {
  if (type === 'boolean') return 'on, off';
  const least = /min (\S+)/.exec(hints)?.[1];
  const most = /max (\S+)/.exec(hints)?.[1];
  return least || most ? `${least ?? ''} to ${most ?? ''}` : 'any';
};

const parameter = text => {
  const [, array, type, name, standard, hints] = item.exec(text);
  return [name, (array ? 'array of ' : '') + type, standard?.trim() ?? 'none', range(type, hints)];
};

/** Of every shader its name, version, text, members and parameters: rows of name, type, default and range. */
export const readDeclarations = file =>
  readFileSync(file, 'utf8').split('declare shader\n').slice(1).map(block => {
    const text = block.slice(0, block.indexOf('end declare'));
    const [, result, name, body, version] = /^ *(.*) "(\w+)" \(\n([^]*)\n *\)\n *version (\d+)\n/.exec(text);
    const members = [...result.matchAll(/([a-z ]+) "(\w+)"/g)].map(([, type, field]) => [field, type.trim()]);
    const lines = body.split('\n').filter(line => !line.trim().startsWith('# '));
    return {
      name, version, members,
      text: `declare shader\n${text}end declare`,
      result: result.replace(/ \{.*/, ''),
      parameters: lines.map(parameter),
    };
  });

const capitalised = text => text[0].toUpperCase() + text.slice(1);

/** Of every recipe its group, name, version, result, purpose, text, what it uses, and its parameters as above. */
export const readRecipes = file =>
  readFileSync(file, 'utf8').split(/^# ---- /m).slice(1).flatMap(part => {
    const group = capitalised(part.slice(0, part.indexOf(' ----\n')));
    return part.split('\n\n').filter(block => block.includes('\ndeclare phenomenon\n')).map(block => {
      const [comment, declaration] = block.split('declare phenomenon\n');
      const text = declaration.slice(0, declaration.indexOf('\nend declare'));
      const [, result, name, body, network] = /^ *(\w+) "(\w+)" \(\n([^]*?)\n    \)\n([^]*)$/.exec(text);
      const parameters = body.split('\n').map(line => {
        const [written, about] = line.split(' # ');
        const [, array, type, field, standard] = item.exec(written);
        const span = /^[[(].*?[\])]/.exec(about)?.[0] ?? (type === 'boolean' ? 'on, off' : 'any');
        return [field, (array ? 'array of ' : '') + type, standard?.trim() ?? 'empty', span];
      });
      return {
        group, name, result, parameters,
        version: /version (\d+)/.exec(network)[1],
        purpose: comment.split('\n# Formula: ')[0].replace(/(^|\n)# /g, ' ').trim(),
        uses: [...new Set([...network.matchAll(/shader +"[^"]+" +"(\w+)"/g)].map(([, used]) => used))],
        text: `declare phenomenon\n${text}\nend declare`,
      };
    });
  });
