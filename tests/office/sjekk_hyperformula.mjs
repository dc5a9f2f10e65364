// A second engine: ExcelJS reads each workbook (formulas and their cached values), HyperFormula
// recalculates every sheet, and each cached value must agree within 1e-9 relative.
//   node sjekk_hyperformula.mjs FIL...
import ExcelJS from 'exceljs';
import { CellError, ErrorType, FunctionArgumentType, FunctionPlugin, HyperFormula } from 'hyperformula';

// VALUE, which HyperFormula lacks: a text read as a number, #VALUE! when it is none.
class Verdi extends FunctionPlugin {
    value(ast, state) {
        return this.runFunction(ast.args, state, this.metadata('VALUE'), (tekst) => {
            const x = String(tekst).trim() === '' ? NaN : Number(tekst);
            return Number.isFinite(x) ? x : new CellError(ErrorType.VALUE);
        });
    }
}
Verdi.implementedFunctions = { VALUE: { method: 'value', parameters: [{ argumentType: FunctionArgumentType.STRING }] } };
HyperFormula.registerFunctionPlugin(Verdi, { enGB: { VALUE: 'VALUE' } });

const lik = (a, b) => (typeof a === 'number' && typeof b === 'number')
    ? a === b || Math.abs(a - b) <= 1e-9 * Math.max(Math.abs(a), Math.abs(b))
    : a === b;

// The cached value as a plain value: number, text, or the error's code.
function bufret(v) {
    if (v && typeof v === 'object' && 'error' in v) return v.error;
    return v;
}

async function sjekk(fil) {
    const bok = new ExcelJS.Workbook();
    await bok.xlsx.readFile(fil);
    const ark = {}, lagret = [];
    bok.eachSheet((a) => {
        const rader = [];
        a.eachRow({ includeEmpty: false }, (rad, r) => {
            rad.eachCell({ includeEmpty: false }, (c, k) => {
                (rader[r - 1] ??= [])[k - 1] = c.formula ? '=' + c.formula
                    : typeof c.value === 'string' ? "'" + c.value : c.value;
                if (c.formula && c.result !== undefined) lagret.push([a.name, r - 1, k - 1, bufret(c.result)]);
            });
        });
        ark[a.name] = Array.from(rader, (r) => r ?? []);
    });
    const hf = HyperFormula.buildFromSheets(ark, { licenseKey: 'gpl-v3', smartRounding: false, precisionEpsilon: 0 });
    const feil = [];
    for (const [navn, r, k, verdi] of lagret) {
        let beregnet = hf.getCellValue({ sheet: hf.getSheetId(navn), row: r, col: k });
        if (beregnet && typeof beregnet === 'object' && 'value' in beregnet) beregnet = beregnet.value;
        if (!lik(verdi, beregnet) && feil.length < 20) feil.push(`${fil} ${navn} R${r + 1}C${k + 1}: lagret ${verdi}, HyperFormula ${beregnet}`);
    }
    console.log(`HyperFormula: ${fil}: ${lagret.length} formelverdier, ${feil.length} avvik`);
    return feil;
}

let alle = [];
for (const fil of process.argv.slice(2)) alle = alle.concat(await sjekk(fil));
for (const f of alle) console.log('AVVIK', f);
process.exit(alle.length ? 1 : 0);
