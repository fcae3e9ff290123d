<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="uk" sourcelanguage="en">
<context>
    <name>Velmora::Application::Application</name>
    <message>
        <source>Show</source>
        <translation>Показати</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Вихід</translation>
    </message>
</context>
<context>
    <name>Velmora::Application::ServiceManager</name>
    <message>
        <source>ERROR</source>
        <translation>ПОМИЛКА</translation>
    </message>
    <message>
        <source>COULD NOT COMMUNICATE WITH SERVICE.</source>
        <translation>НЕ ВДАЛОСЯ ЗВ’ЯЗАТИСЯ ЗІ СЛУЖБОЮ.</translation>
    </message>
    <message>
        <source>ERROR PARSING APPVERSION, REINSTALL APPLICATION</source>
        <translation>ПОМИЛКА ЧИТАННЯ ВЕРСІЇ ПРОГРАМИ, ПЕРЕВСТАНОВІТЬ ПРОГРАМУ</translation>
    </message>
    <message>
        <source>SERVICE VERSION IS DIFFERENT THAN APPLICATION VERSION, REINSTALL APPLICATION</source>
        <translation>ВЕРСІЯ СЛУЖБИ ВІДРІЗНЯЄТЬСЯ ВІД ВЕРСІЇ ПРОГРАМИ, ПЕРЕВСТАНОВІТЬ ПРОГРАМУ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::AboutWidget</name>
    <message>
        <source>Build date </source>
        <translation>Дата збірки </translation>
    </message>
    <message>
        <source>COPYRIGHT © %1 BRANTEL. ALL RIGHTS RESERVED.</source>
        <translation>© %1 BRANTEL. УСІ ПРАВА ЗАХИЩЕНО.</translation>
    </message>
    <message>
        <source>CLOSE</source>
        <translation>ЗАКРИТИ</translation>
    </message>
    <message>
        <source>This program uses %1, licensed under</source>
        <translation>Ця програма використовує %1 за ліцензією</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::AdWidget</name>
    <message>
        <source>CLOSE</source>
        <translation>ЗАКРИТИ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::DriveHealthInfoWidget</name>
    <message>
        <source>LESS THAN 10% OF FREE DISK SPACE LEFT.</source>
        <translation>НА ДИСКУ ЗАЛИШИЛОСЯ МЕНШЕ 10% ВІЛЬНОГО МІСЦЯ.</translation>
    </message>
    <message>
        <source>LESS THAN 20% OF FREE DISK SPACE LEFT.</source>
        <translation>НА ДИСКУ ЗАЛИШИЛОСЯ МЕНШЕ 20% ВІЛЬНОГО МІСЦЯ.</translation>
    </message>
    <message>
        <source>LESS THAN 10% OF REMAINING DISK LIFE LEFT.</source>
        <translation>ЗАЛИШИЛОСЯ МЕНШЕ 10% РЕСУРСУ ДИСКА.</translation>
    </message>
    <message>
        <source>LESS THAN 70% OF REMAINING DISK LIFE LEFT.</source>
        <translation>ЗАЛИШИЛОСЯ МЕНШЕ 70% РЕСУРСУ ДИСКА.</translation>
    </message>
    <message>
        <source>DRIVE CAN WORK BETTER IF CONNECTED TO FASTER SATA CONTROLLER.</source>
        <translation>ДИСК МОЖЕ ПРАЦЮВАТИ КРАЩЕ, ЯКЩО ПІДКЛЮЧИТИ ЙОГО ДО ШВИДШОГО КОНТРОЛЕРА SATA.</translation>
    </message>
    <message>
        <source>FIRMWARE UPDATE AVAILABLE FOR DRIVE.</source>
        <translation>ДЛЯ ДИСКА ДОСТУПНЕ ОНОВЛЕННЯ ПРОШИВКИ.</translation>
    </message>
    <message>
        <source>DRIVE STATUS</source>
        <translation>СТАН ДИСКА</translation>
    </message>
    <message>
        <source>FREE SPACE</source>
        <translation>ВІЛЬНЕ МІСЦЕ</translation>
    </message>
    <message>
        <source>LIFE REMAINING</source>
        <translation>ЗАЛИШКОВИЙ РЕСУРС</translation>
    </message>
    <message>
        <source>BAD SECTORS</source>
        <translation>ПОШКОДЖЕНІ СЕКТОРИ</translation>
    </message>
    <message>
        <source>SATA SPEED</source>
        <translation>ШВИДКІСТЬ SATA</translation>
    </message>
    <message>
        <source>FIRMWARE UPDATE</source>
        <translation>ОНОВЛЕННЯ ПРОШИВКИ</translation>
    </message>
    <message>
        <source>CLOSE</source>
        <translation>ЗАКРИТИ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::FirmwareUpdatePage</name>
    <message>
        <source>FIRMWARE UPDATE</source>
        <translation>ОНОВЛЕННЯ ПРОШИВКИ</translation>
    </message>
    <message>
        <source>SSD MODEL:</source>
        <translation>МОДЕЛЬ SSD:</translation>
    </message>
    <message>
        <source>FIRMWARE VERSION:</source>
        <translation>ВЕРСІЯ ПРОШИВКИ:</translation>
    </message>
    <message>
        <source>AVAILABLE UPDATES:</source>
        <translation>ДОСТУПНІ ОНОВЛЕННЯ:</translation>
    </message>
    <message>
        <source>ANALYZED:</source>
        <translation>ПРОАНАЛІЗОВАНО:</translation>
    </message>
    <message>
        <source>CHECK FOR UPDATES</source>
        <translation>ПЕРЕВІРИТИ ОНОВЛЕННЯ</translation>
    </message>
    <message>
        <source>UPDATE FIRMWARE</source>
        <translation>ОНОВИТИ ПРОШИВКУ</translation>
    </message>
    <message>
        <source>NO AVAILABLE UPDATES</source>
        <translation>НЕМАЄ ДОСТУПНИХ ОНОВЛЕНЬ</translation>
    </message>
    <message>
        <source>NO DATA</source>
        <translation>НЕМАЄ ДАНИХ</translation>
    </message>
    <message>
        <source>NOT AVAILABLE</source>
        <translation>НЕДОСТУПНО</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::HomePage</name>
    <message>
        <source>CHOOSE YOUR DRIVE</source>
        <translation>ОБЕРІТЬ ДИСК</translation>
    </message>
    <message>
        <source>WELCOME</source>
        <translation>ЛАСКАВО ПРОСИМО</translation>
    </message>
    <message>
        <source>SELECT THE DRIVE YOU WANT TO LOOK AFTER.</source>
        <translation>ОБЕРІТЬ ДИСК, ЗА ЯКИМ ХОЧЕТЕ СТЕЖИТИ.</translation>
    </message>
    <message>
        <source>SEARCHING FOR DRIVES...</source>
        <translation>ПОШУК ДИСКІВ...</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::MainWindow</name>
    <message>
        <source>KESTRAVIN SSD</source>
        <translation>KESTRAVIN SSD</translation>
    </message>
    <message>
        <source>UPDATE AVAILABLE</source>
        <translation>ДОСТУПНЕ ОНОВЛЕННЯ</translation>
    </message>
    <message>
        <source>APPLICATION UPDATE AVAILABLE</source>
        <translation>ДОСТУПНЕ ОНОВЛЕННЯ ПРОГРАМИ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::MenuBar</name>
    <message>
        <source>SSD MANAGEMENT</source>
        <translation>КЕРУВАННЯ SSD</translation>
    </message>
    <message>
        <source>ADDITIONAL FEATURES</source>
        <translation>ДОДАТКОВІ ФУНКЦІЇ</translation>
    </message>
    <message>
        <source>DATA MIGRATION</source>
        <translation>ПЕРЕНЕСЕННЯ ДАНИХ</translation>
    </message>
    <message>
        <source>TECHNICAL SUPPORT</source>
        <translation>ТЕХНІЧНА ПІДТРИМКА</translation>
    </message>
    <message>
        <source>SETTINGS</source>
        <translation>НАЛАШТУВАННЯ</translation>
    </message>
    <message>
        <source>MY SSD</source>
        <translation>МІЙ SSD</translation>
    </message>
    <message>
        <source>SMART PARAMETERS</source>
        <translation>ПАРАМЕТРИ SMART</translation>
    </message>
    <message>
        <source>PERFORMANCE TEST</source>
        <translation>ТЕСТ ПРОДУКТИВНОСТІ</translation>
    </message>
    <message>
        <source>FIRMWARE UPDATE</source>
        <translation>ОНОВЛЕННЯ ПРОШИВКИ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::PerformanceCheckPage</name>
    <message>
        <source>%1 MB/s</source>
        <translation>%1 МБ/с</translation>
    </message>
    <message>
        <source>PERFORMANCE CHECK</source>
        <translation>ПЕРЕВІРКА ПРОДУКТИВНОСТІ</translation>
    </message>
    <message>
        <source>ELAPSED</source>
        <translation>МИНУЛО</translation>
    </message>
    <message>
        <source>REMAINING</source>
        <translation>ЗАЛИШИЛОСЯ</translation>
    </message>
    <message>
        <source>WRITE:</source>
        <translation>ЗАПИС:</translation>
    </message>
    <message>
        <source>READ:</source>
        <translation>ЧИТАННЯ:</translation>
    </message>
    <message>
        <source>0  MB/s</source>
        <translation>0 МБ/с</translation>
    </message>
    <message>
        <source>0 MB/s</source>
        <translation>0 МБ/с</translation>
    </message>
    <message>
        <source>TEST DETAILS: TEST PERFORMS CONTINIOUS WRITE AND READ OF 4MB BLOCKS</source>
        <translation>ПОДРОБИЦІ ТЕСТУ: ТЕСТ ВИКОНУЄ БЕЗПЕРЕРВНИЙ ЗАПИС І ЧИТАННЯ БЛОКІВ ПО 4 МБ</translation>
    </message>
    <message>
        <source>START</source>
        <translation>ЗАПУСТИТИ</translation>
    </message>
    <message>
        <source>%1%</source>
        <translation>%1%</translation>
    </message>
    <message>
        <source>RUNNING</source>
        <translation>ВИКОНУЄТЬСЯ</translation>
    </message>
    <message>
        <source>CANCEL</source>
        <translation>СКАСУВАТИ</translation>
    </message>
    <message>
        <source>TEST FINISHED</source>
        <translation>ТЕСТ ЗАВЕРШЕНО</translation>
    </message>
    <message>
        <source>TEST CANCELED</source>
        <translation>ТЕСТ СКАСОВАНО</translation>
    </message>
    <message>
        <source>TEST FAILED</source>
        <translation>ПОМИЛКА ТЕСТУ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::SSDStatusPage</name>
    <message>
        <source>0.00 BYTES</source>
        <translation>0.00 БАЙТІВ</translation>
    </message>
    <message>
        <source>NO DATA</source>
        <translation>НЕМАЄ ДАНИХ</translation>
    </message>
    <message>
        <source>ANALYZED: </source>
        <translation>ПРОАНАЛІЗОВАНО: </translation>
    </message>
    <message>
        <source>MY SSD</source>
        <translation>МІЙ SSD</translation>
    </message>
    <message>
        <source>SSD MODEL:</source>
        <translation>МОДЕЛЬ SSD:</translation>
    </message>
    <message>
        <source>CAPACITY:</source>
        <translation>ЄМНІСТЬ:</translation>
    </message>
    <message>
        <source>SERIAL NUMBER:</source>
        <translation>СЕРІЙНИЙ НОМЕР:</translation>
    </message>
    <message>
        <source>FIRMWARE:</source>
        <translation>ПРОШИВКА:</translation>
    </message>
    <message>
        <source>DRIVE STATUS:</source>
        <translation>СТАН ДИСКА:</translation>
    </message>
    <message>
        <source>ACTION NEEDED</source>
        <translation>ПОТРІБНІ ДІЇ</translation>
    </message>
    <message>
        <source>DETAILS</source>
        <translation>ДОКЛАДНІШЕ</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>ОК</translation>
    </message>
    <message>
        <source>GOOD</source>
        <translation>ДОБРИЙ</translation>
    </message>
    <message>
        <source>FIRMWARE STATUS:</source>
        <translation>СТАН ПРОШИВКИ:</translation>
    </message>
    <message>
        <source>UPDATE AVAILABLE</source>
        <translation>ДОСТУПНЕ ОНОВЛЕННЯ</translation>
    </message>
    <message>
        <source>UP TO DATE</source>
        <translation>АКТУАЛЬНА</translation>
    </message>
    <message>
        <source>TRIM SUPPORT:</source>
        <translation>ПІДТРИМКА TRIM:</translation>
    </message>
    <message>
        <source>AHCI SUPPORT:</source>
        <translation>ПІДТРИМКА AHCI:</translation>
    </message>
    <message>
        <source>TOTAL STORAGE:</source>
        <translation>ЗАГАЛЬНИЙ ОБСЯГ:</translation>
    </message>
    <message>
        <source>USED STORAGE:</source>
        <translation>ЗАЙНЯТО:</translation>
    </message>
    <message>
        <source>FREE STORAGE:</source>
        <translation>ВІЛЬНО:</translation>
    </message>
    <message>
        <source>ANALYZED:</source>
        <translation>ПРОАНАЛІЗОВАНО:</translation>
    </message>
    <message>
        <source>RELOAD</source>
        <translation>ОНОВИТИ</translation>
    </message>
    <message>
        <source>YES</source>
        <translation>ТАК</translation>
    </message>
    <message>
        <source>NO</source>
        <translation>НІ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::SmartParametersPage</name>
    <message>
        <source>NOT SUPPORTED</source>
        <translation>НЕ ПІДТРИМУЄТЬСЯ</translation>
    </message>
    <message>
        <source>SMART PARAMETERS</source>
        <translation>ПАРАМЕТРИ SMART</translation>
    </message>
    <message>
        <source>LIFE REMAINING:</source>
        <translation>ЗАЛИШКОВИЙ РЕСУРС:</translation>
    </message>
    <message>
        <source>TEMPERATURE:</source>
        <translation>ТЕМПЕРАТУРА:</translation>
    </message>
    <message>
        <source>POWER-ON HOURS</source>
        <translation>ГОДИНИ РОБОТИ</translation>
    </message>
    <message>
        <source>POWER CYCLES</source>
        <translation>ЦИКЛИ ВВІМКНЕННЯ</translation>
    </message>
    <message>
        <source>AVG ERASE COUNT</source>
        <translation>СЕР. КІЛЬКІСТЬ СТИРАНЬ</translation>
    </message>
    <message>
        <source>MAX ERASE COUNT</source>
        <translation>МАКС. КІЛЬКІСТЬ СТИРАНЬ</translation>
    </message>
    <message>
        <source>GB WRITTEN</source>
        <translation>ЗАПИСАНО ГБ</translation>
    </message>
    <message>
        <source>%1%</source>
        <translation>%1%</translation>
    </message>
    <message>
        <source>%1 °C</source>
        <translation>%1 °C</translation>
    </message>
    <message>
        <source>%1 GB</source>
        <translation>%1 ГБ</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::FileSystemFilter</name>
    <message>
        <source>LOADING...</source>
        <translation>ЗАВАНТАЖЕННЯ...</translation>
    </message>
    <message>
        <source>PATH</source>
        <translation>ШЛЯХ</translation>
    </message>
    <message>
        <source>SIZE</source>
        <translation>РОЗМІР</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::Migration</name>
    <message>
        <source>INVALID STATE</source>
        <translation>НЕПРИПУСТИМИЙ СТАН</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::MigrationController</name>
    <message>
        <source>MIGRATION WAS CANCELED</source>
        <translation>ПЕРЕНЕСЕННЯ СКАСОВАНО</translation>
    </message>
    <message>
        <source>FAILED TO CLEAN DISK ON DESTINATION DRIVE.</source>
        <translation>НЕ ВДАЛОСЯ ОЧИСТИТИ ЦІЛЬОВИЙ ДИСК.</translation>
    </message>
    <message>
        <source>FAILED TO CREATE PARTITION ON DESTINATION DRIVE (%1).</source>
        <translation>НЕ ВДАЛОСЯ СТВОРИТИ РОЗДІЛ НА ЦІЛЬОВОМУ ДИСКУ (%1).</translation>
    </message>
    <message>
        <source>FAILED TO FORMAT PARTITION ON DESTINATION DRIVE (%1).</source>
        <translation>НЕ ВДАЛОСЯ ВІДФОРМАТУВАТИ РОЗДІЛ НА ЦІЛЬОВОМУ ДИСКУ (%1).</translation>
    </message>
    <message>
        <source>FAILED TO COPY FILES (%1).</source>
        <translation>НЕ ВДАЛОСЯ СКОПІЮВАТИ ФАЙЛИ (%1).</translation>
    </message>
    <message>
        <source>FAILED TO CONFIGURE BOOT OPTIONS (%1).</source>
        <translation>НЕ ВДАЛОСЯ НАЛАШТУВАТИ ПАРАМЕТРИ ЗАВАНТАЖЕННЯ (%1).</translation>
    </message>
    <message>
        <source>SERVICE IS NOT RESPONSIVE.</source>
        <translation>СЛУЖБА НЕ ВІДПОВІДАЄ.</translation>
    </message>
</context>
<context>
    <name>Velmora::System::Drive</name>
    <message>
        <source>LOW FREE SPACE ON DRIVE %1.</source>
        <translation>МАЛО ВІЛЬНОГО МІСЦЯ НА ДИСКУ %1.</translation>
    </message>
    <message>
        <source>LOW LIFE REMAINING ON DRIVE %1.</source>
        <translation>НИЗЬКИЙ ЗАЛИШКОВИЙ РЕСУРС ДИСКА %1.</translation>
    </message>
    <message>
        <source>BAD SECTORS ON DRIVE %1.</source>
        <translation>ПОШКОДЖЕНІ СЕКТОРИ НА ДИСКУ %1.</translation>
    </message>
    <message>
        <source>DRIVE %1 COULD WORK FASTER.</source>
        <translation>ДИСК %1 МІГ БИ ПРАЦЮВАТИ ШВИДШЕ.</translation>
    </message>
</context>
<context>
    <name>Velmora::System::FileCategories</name>
    <message>
        <source>SYSTEM</source>
        <translation>СИСТЕМА</translation>
    </message>
    <message>
        <source>PROGRAMS</source>
        <translation>ПРОГРАМИ</translation>
    </message>
    <message>
        <source>DOCUMENTS</source>
        <translation>ДОКУМЕНТИ</translation>
    </message>
    <message>
        <source>VIDEO</source>
        <translation>ВІДЕО</translation>
    </message>
    <message>
        <source>SOUND</source>
        <translation>АУДІО</translation>
    </message>
    <message>
        <source>PICTURES</source>
        <translation>ЗОБРАЖЕННЯ</translation>
    </message>
    <message>
        <source>OTHER</source>
        <translation>ІНШЕ</translation>
    </message>
</context>
</TS>
